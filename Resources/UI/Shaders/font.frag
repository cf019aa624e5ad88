#version 330 core

in vec2 coordinate;
flat in int layer;

uniform sampler2DArray atlas;
uniform vec4 color;

out vec4 fragmentColor;

// Texels in each direction that a pixel looks at. Text that is shrunk further can't be read anyway.
const float maxExtent = 16.0;

// The glyphs are drawn at a sixth of their size or so, and the atlas has no smaller levels: each pixel gets the average
// of what it covers, so that a glyph looks the same wherever it stands. There is nothing around a layer. A pixel that
// covers less than a texel gets what linear filtering would give it.
void main()
{
    vec2 size = vec2(textureSize(atlas, 0).xy);
    vec2 extent = clamp(fwidth(coordinate) * size, 1.0, maxExtent);
    vec2 low = coordinate * size - extent * 0.5;
    vec2 high = low + extent;
    ivec2 first = ivec2(max(floor(low), 0.0));
    ivec2 end = ivec2(min(ceil(high), size));
    float sum = 0.0;
    for (int row = first.y; row < end.y; ++row)
    {
        for (int column = first.x; column < end.x; ++column)
        {
            vec2 texel = vec2(column, row);
            vec2 share = max(min(high, texel + 1.0) - max(low, texel), 0.0);
            sum += share.x * share.y * texelFetch(atlas, ivec3(column, row, layer), 0).r;
        }
    }
    fragmentColor = vec4(color.rgb, color.a * sum / (extent.x * extent.y));
}
