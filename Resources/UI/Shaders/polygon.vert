#version 330 core

layout(location = 0) in vec3 position;
layout(location = 1) in vec4 color;

layout(std140) uniform Shared
{
    mat4 projection;
    mat4 view;
    vec2 screenSize;
};

uniform mat4 model;

out vec4 vertexColor;

void main()
{
    vertexColor = color;
    gl_Position = projection * view * model * vec4(position, 1.0);
}
