#version 330 core

in vec2 coordinate;

uniform sampler2D image;
uniform vec4 color;

out vec4 fragmentColor;

// A pixel that the picture covers in part shows the picture's last pixels; beyond them it would begin anew. How much the
// picture is reduced is told by the place before that: at its corners the cut one stands still.
void main()
{
    vec2 margin = min(fwidth(coordinate) * 0.5, 0.5);
    vec2 place = clamp(coordinate, margin, 1.0 - margin);
    fragmentColor = textureGrad(image, place, dFdx(coordinate), dFdy(coordinate)) * color;
}
