#version 330 core

in vec2 coordinate;
flat in int isShrunk;

uniform sampler2D image;
uniform vec4 color;

out vec4 fragmentColor;

void main()
{
    // At its own size or enlarged, a picture shows its pixels as they are. The level is told, since the one found from
    // the coordinates' slope is a hair off zero at times, and mixes neighbours then.
    vec4 filtered = texture(image, coordinate);
    vec4 exact = textureLod(image, coordinate, 0.0);
    fragmentColor = (isShrunk != 0 ? filtered : exact) * color;
}
