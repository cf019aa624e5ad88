#include "Tests/Core/Graphics/Renderer/RecordedRenderer.h"
#include "Tests/Support/AssertionTrap.h"

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::Texture;
using System::Math::Matrix4;
using testing::ElementsAre;
using Tests::GLCall;

const std::vector<std::uint8_t> s_pixels(64, 9); // enough for 4 by 4 with 32 bits

} // namespace

class RecordedTextures : public RecordedRenderer
{
protected:
    void SetUp() override { Start(); }

    std::uint16_t Add(std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel = 32)
    {
        std::uint16_t id = 0;
        m_textures.Create(id, width, height, bitsPerPixel, s_pixels.data(), m_renderer);
        return id;
    }

    bool Update(std::uint16_t id, std::uint16_t width, std::uint16_t height, std::uint8_t bitsPerPixel = 32)
    {
        return m_textures.UpdateBitmap(id, width, height, bitsPerPixel, s_pixels.data(), m_renderer);
    }

    Graphics::Renderer::TextureRenderer& m_textures = m_renderer.GetTextureRenderer();
};

TEST_F(RecordedTextures, InitialisationMakesTheQuad)
{
    m_gl.Reset();
    ASSERT_TRUE(m_textures.Initialize(m_renderer));
    EXPECT_EQ(
        m_gl.GetCalls("glBufferData")[0].GetElements<float>(),
        (std::vector<float>{0.5F, 0.5F, 0, 1, 1, 0.5F, -0.5F, 0, 1, 0, -0.5F, -0.5F, 0, 0, 0, -0.5F, 0.5F, 0, 0, 1}));
    EXPECT_EQ(m_gl.GetCalls("glBufferData")[1].GetElements<std::uint32_t>(),
              (std::vector<std::uint32_t>{0, 3, 1, 1, 3, 2}));
    std::vector<std::string> calls = TakeCalls();
    calls.erase(calls.begin(), std::find(calls.begin(), calls.end(), Call("glGenVertexArrays", 1)));
    EXPECT_THAT(
        calls, ElementsAre(
                   Call("glGenVertexArrays", 1), Call("glGenBuffers", 1), Call("glGenBuffers", 1),
                   Call("glBindVertexArray", 4), Call("glBindBuffer", GL_ARRAY_BUFFER, 5),
                   Call("glBufferData", GL_ARRAY_BUFFER, 80, 1, GL_STATIC_DRAW),
                   Call("glVertexAttribPointer", 0, 3, GL_FLOAT, GL_FALSE, 20, 0), Call("glEnableVertexAttribArray", 0),
                   Call("glVertexAttribPointer", 1, 2, GL_FLOAT, GL_FALSE, 20, 12),
                   Call("glEnableVertexAttribArray", 1), Call("glBindBuffer", GL_ELEMENT_ARRAY_BUFFER, 6),
                   Call("glBufferData", GL_ELEMENT_ARRAY_BUFFER, 24, 1, GL_STATIC_DRAW), Call("glBindVertexArray", 0)));
}

TEST_F(RecordedTextures, CreationUploadsAtOnce)
{
    std::uint16_t id = 0;
    EXPECT_EQ(&m_textures.Create(id, 3, 2, 32, s_pixels.data(), m_renderer), &id);
    EXPECT_EQ(m_gl.GetCalls("glTexImage2D").front().data.size(), 24U);
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glGenTextures", 1), Call("glBindTexture", GL_TEXTURE_2D, s_nextName),
                            Call("glTexImage2D", GL_TEXTURE_2D, 0, GL_RGB, 3, 2, 0, 0x80E1, GL_UNSIGNED_BYTE, 1),
                            Call("glTexParameteri", GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR),
                            Call("glTexParameteri", GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST),
                            Call("glGenerateMipmap", GL_TEXTURE_2D), Call("glBindTexture", GL_TEXTURE_2D, 0)));
    const Texture& texture = *m_textures.Get(id);
    EXPECT_EQ(texture.id, id);
    EXPECT_EQ(texture.gpuData.handle, s_nextName);
    EXPECT_EQ(texture.gpuData.width, 3);
    EXPECT_EQ(texture.gpuData.height, 2);
    EXPECT_TRUE(texture.visible);
    EXPECT_EQ(texture.color, (System::Math::Vector4{1, 1, 1, 1}));
}

TEST_F(RecordedTextures, APictureWithoutAFourthByteIsTakenAsSuch)
{
    Add(3, 2, 24);
    EXPECT_EQ(m_gl.GetCalls("glTexImage2D").front().arguments[6], double{0x80E0});
}

TEST_F(RecordedTextures, AnUnscaledPlacementGetsThePicturesSize)
{
    EXPECT_EQ(m_textures.Get(Add(3, 2))->model, Matrix4::ScaleAndTranslation(3, 2, 1, 0, 0, 0));
}

TEST_F(RecordedTextures, ATurnedAndMovedPlacementGetsThePicturesSizeToo)
{
    const std::uint16_t id = Add(0, 0);
    m_textures.Get(id)->model = Matrix4{{0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1}};
    EXPECT_TRUE(Update(id, 3, 2));
    EXPECT_EQ(m_textures.Get(id)->model, (Matrix4{{0, 3, 0, 0, -2, 0, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1}}));
}

TEST_F(RecordedTextures, AScaledPlacementStays)
{
    const std::uint16_t id = Add(0, 0);
    m_textures.Get(id)->model = Matrix4::ScaleAndTranslation(1, 8, 1, 0, 0, 0);
    EXPECT_TRUE(Update(id, 3, 2));
    EXPECT_EQ(m_textures.Get(id)->model, Matrix4::ScaleAndTranslation(1, 8, 1, 0, 0, 0));
}

TEST_F(RecordedTextures, AnUpdateReusesTheTexture)
{
    const std::uint16_t id = Add(4, 4);
    m_gl.ClearCalls();
    EXPECT_TRUE(Update(id, 4, 4, 24));
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glBindTexture", GL_TEXTURE_2D, s_nextName),
                            Call("glTexSubImage2D", GL_TEXTURE_2D, 0, 0, 0, 4, 4, GL_BGR, GL_UNSIGNED_BYTE, 1),
                            Call("glGenerateMipmap", GL_TEXTURE_2D), Call("glBindTexture", GL_TEXTURE_2D, 0)));
}

TEST_F(RecordedTextures, AnUpdateOfAnotherSizeIsAFault)
{
    const std::uint16_t id = Add(4, 4);
    m_gl.ClearCalls();
    for (const std::array<std::uint16_t, 2> size : {std::array<std::uint16_t, 2>{4, 3}, {3, 4}, {0, 0}})
    {
        EXPECT_ASSERTION(Update(id, size[0], size[1]),
                         "texture->gpuData.width == width && texture->gpuData.height == height",
                         "Update bitmap size doesn't match!");
    }
    EXPECT_THAT(TakeCalls(), ElementsAre());
}

TEST_F(RecordedTextures, AFirstPictureWithoutPixelsLeavesTheNextOneTheFirst)
{
    const std::uint16_t id = Add(0, 0);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    EXPECT_EQ(m_textures.Get(id)->gpuData.width, 0);
    m_textures.Render(m_renderer);
    EXPECT_TRUE(m_gl.GetCalls("glDrawElements").empty());
    EXPECT_TRUE(Update(id, 2, 2));
    EXPECT_EQ(m_gl.GetCalls("glTexImage2D").size(), 1U);
    EXPECT_EQ(m_textures.Get(id)->gpuData.height, 2);
}

TEST_F(RecordedTextures, WhatCantBeReadIsRefused)
{
    const std::uint16_t id = Add(4, 4);
    m_gl.ClearCalls();
    EXPECT_FALSE(m_textures.UpdateBitmap(id, 4, 4, 32, nullptr, m_renderer));
    EXPECT_FALSE(Update(id, 4, 4, 8));
    EXPECT_FALSE(Update(id, 4, 4, 16));
    EXPECT_FALSE(Update(0, 4, 4));
    EXPECT_THAT(TakeCalls(), ElementsAre());
}

TEST_F(RecordedTextures, RenderDrawsEachVisibleTexture)
{
    const std::uint16_t id = Add(4, 4);
    m_textures.Get(id)->color = {0.5F, 0.5F, 0.5F, 1};
    m_textures.Get(Add(2, 2))->visible = false;
    m_gl.ClearCalls();
    m_textures.Render(m_renderer);
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glUseProgram", s_textureProgram), Call("glBindVertexArray", s_textureArray),
                            Call("glActiveTexture", GL_TEXTURE0), Call("glUniformMatrix4fv", s_model, 1, GL_FALSE),
                            Call("glUniform4f", s_color, 0.5, 0.5, 0.5, 1),
                            Call("glBindTexture", GL_TEXTURE_2D, s_nextName),
                            Call("glDrawElements", GL_TRIANGLES, 6, GL_UNSIGNED_INT, 0), Call("glBindVertexArray", 0)));
}

TEST_F(RecordedTextures, ARemovedTextureGoesOnceAtTheNextRender)
{
    const std::uint16_t id = Add(4, 4);
    m_gl.ClearCalls();
    EXPECT_TRUE(m_textures.Remove(id));
    EXPECT_FALSE(m_textures.Remove(id));
    EXPECT_EQ(m_textures.Get(id), nullptr);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    m_textures.Render(m_renderer);
    m_textures.Render(m_renderer);
    const std::vector<Tests::GLCall> deletions = m_gl.GetCalls("glDeleteTextures");
    ASSERT_EQ(deletions.size(), 1U);
    EXPECT_EQ(deletions.front().arguments, (std::vector<double>{1, s_nextName}));
}

TEST_F(RecordedTextures, OfTwoTexturesWithOneIdTheYoungerGoes)
{
    const std::uint16_t id = Add(4, 4);
    for (int count = 0; count < 65534; ++count)
        EXPECT_TRUE(m_textures.Remove(Add(0, 0)));
    ASSERT_EQ(Add(4, 4), id) << "the counter has wrapped; the picture goes to the one that is found, the older";
    m_gl.ClearCalls();
    EXPECT_TRUE(m_textures.Remove(id));
    m_textures.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glDrawElements").size(), 1U);
    EXPECT_EQ(m_gl.GetCalls("glDeleteTextures").back().arguments, (std::vector<double>{1, 0}));
    EXPECT_TRUE(m_textures.Remove(id));
    m_textures.Render(m_renderer);
    EXPECT_EQ(m_gl.GetCalls("glDrawElements").size(), 1U);
    EXPECT_EQ(m_gl.GetCalls("glDeleteTextures").back().arguments, (std::vector<double>{1, s_nextName}));
}

TEST_F(RecordedTextures, ShutdownDeletesPendingAndLivingTextures)
{
    const std::uint16_t first = Add(4, 4);
    Add(2, 2);
    EXPECT_TRUE(m_textures.Remove(first));
    m_gl.ClearCalls();
    m_textures.Shutdown(m_renderer);
    EXPECT_THAT(TakeCalls(),
                ElementsAre(Call("glDeleteBuffers", 1, s_textureArray + 1),
                            Call("glDeleteBuffers", 1, s_textureArray + 2),
                            Call("glDeleteVertexArrays", 1, s_textureArray), Call("glDeleteTextures", 1, s_nextName),
                            Call("glDeleteTextures", 1, s_nextName + 1)));
    EXPECT_EQ(m_textures.GetCount(), 0U);
}

TEST_F(RecordedTextures, WithoutAContextNothingIsUploadedOrDrawn)
{
    const std::uint16_t id = Add(4, 4);
    m_renderer.GetContext().Destroy(s_window);
    m_gl.ClearCalls();
    EXPECT_FALSE(Update(id, 4, 4));
    EXPECT_NE(Add(4, 4), 0);
    m_textures.Render(m_renderer);
    m_textures.Shutdown(m_renderer);
    EXPECT_THAT(TakeCalls(), ElementsAre());
    EXPECT_FALSE(m_textures.Initialize(m_renderer));
}

} // namespace Orvik::Tests
