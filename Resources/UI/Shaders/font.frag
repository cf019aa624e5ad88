#version 330 core

in vec2 coordinate;
flat in float layer;

uniform sampler2DArray atlas;
uniform vec4 color;

out vec4 fragmentColor;

const int taps = 4; // in each direction

void main()
{
    // The glyphs are drawn at a sixth of their size or so, and the atlas has no smaller levels: the taps are spread
    // over what the pixel covers, less the width that a tap has by itself.
    vec2 texel = 1.0 / vec2(textureSize(atlas, 0).xy);
    vec2 spread = max(fwidth(coordinate) - texel, 0.0);
    float coverage = 0.0;
    for (int row = 0; row < taps; ++row)
    {
        for (int column = 0; column < taps; ++column)
        {
            vec2 offset = (vec2(column, row) + 0.5) / float(taps) - 0.5;
            coverage += textureLod(atlas, vec3(coordinate + offset * spread, layer), 0.0).r;
        }
    }
    fragmentColor = vec4(color.rgb, color.a * coverage / float(taps * taps));
}
