#version 330 core

in float opacity;
in float lineDistance;

uniform vec4 color;
uniform float dashLength;
uniform float gapLength;

out vec4 fragmentColor;

void main()
{
    if (gapLength > 0.0 && mod(lineDistance, dashLength + gapLength) >= dashLength)
        discard;
    fragmentColor = vec4(color.rgb, color.a * clamp(opacity, 0.0, 1.0));
}
