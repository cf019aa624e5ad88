#version 330 core

layout(location = 0) in vec2 position;

layout(std140) uniform Shared
{
    mat4 projection;
    mat4 view;
    vec2 screenSize;
};

uniform mat4 model;

void main()
{
    gl_Position = projection * view * model * vec4(position, 0.0, 1.0);
}
