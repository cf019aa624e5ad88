#version 330 core

in vec2 coordinate;

uniform sampler2D image;
uniform vec4 color;

out vec4 fragmentColor;

void main()
{
    fragmentColor = texture(image, coordinate) * color;
}
