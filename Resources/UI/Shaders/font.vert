#version 330 core

// A glyph's square is drawn one pixel larger on each side, so that the pixels that it only touches get their share too.

layout(location = 0) in vec2 position; // the unit square

layout(std140) uniform Shared
{
    mat4 projection;
    mat4 view;
    vec2 screenSize;
};

uniform mat4 model;
uniform mat4 instanceModels[64];
uniform int instanceIndices[64];

out vec2 coordinate;
flat out int layer;

void main()
{
    mat4 placement = projection * view * model * instanceModels[gl_InstanceID];
    vec2 pixels = vec2(length(placement[0].xy * screenSize), length(placement[1].xy * screenSize)) * 0.5;
    vec2 grown = position + (position * 2.0 - 1.0) / max(pixels, 1.0);
    // A glyph's bitmap begins with its top row, at the top left of the square.
    coordinate = vec2(grown.x, 1.0 - grown.y);
    layer = instanceIndices[gl_InstanceID];
    gl_Position = placement * vec4(grown, 0.0, 1.0);
}
