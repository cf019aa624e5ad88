#version 330 core

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
flat out float layer;

void main()
{
    // A glyph's bitmap begins with its top row, at the top left of the square.
    coordinate = vec2(position.x, 1.0 - position.y);
    layer = float(instanceIndices[gl_InstanceID]);
    gl_Position = projection * view * model * instanceModels[gl_InstanceID] * vec4(position, 0.0, 1.0);
}
