#version 330 core

// Places an image. The edges of an upright picture go to whole pixels, right and downward where they fall on a half:
// a picture of odd width in a window of even width would otherwise be sampled between its pixels.

layout(location = 0) in vec3 position;
layout(location = 1) in vec2 textureCoordinate;

layout(std140) uniform Shared
{
    mat4 projection;
    mat4 view;
    vec2 screenSize;
};

uniform mat4 model;

out vec2 coordinate;

// Positions are settled to this fraction of a pixel, or the rounding of the matrices would decide where half a pixel
// goes.
const float settledSteps = 64.0;

vec2 SettleToPixels(vec2 clip)
{
    vec2 pixels = (clip * 0.5 + 0.5) * screenSize;
    pixels = floor(pixels * settledSteps + 0.5) / settledSteps;
    pixels = vec2(floor(pixels.x + 0.5), ceil(pixels.y - 0.5));
    return (pixels * 2.0 - screenSize) / screenSize;
}

void main()
{
    // The first row of the image is its top one.
    coordinate = vec2(textureCoordinate.x, 1.0 - textureCoordinate.y);
    mat4 placement = projection * view * model;
    gl_Position = placement * vec4(position, 1.0);
    bool isUpright = placement[0].y == 0.0 && placement[1].x == 0.0;
    if (isUpright && gl_Position.w == 1.0)
        gl_Position.xy = SettleToPixels(gl_Position.xy);
}
