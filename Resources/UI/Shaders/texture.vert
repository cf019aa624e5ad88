#version 330 core

// Places an image. An upright picture lies on whole pixels, as the tool counts them: its centre goes to a whole pixel,
// left and upward from a half, and its left and top edges from there to the nearest pixel inside. So a picture of even
// width in a window of odd width begins where the tool says. A picture that ends within a pixel has that pixel too.

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

vec2 Settle(vec2 pixels)
{
    return floor(pixels * settledSteps + 0.5) / settledSteps;
}

// An upright picture of that size around a centre, both in pixels with y upward: where the corner at `place`, from 0 to
// 1 in both directions, goes in clip space, and what it shows.
void PlaceUpright(vec2 centre, vec2 size, vec2 place)
{
    vec2 middle = vec2(floor(centre.x), ceil(centre.y));
    vec2 topLeft = vec2(ceil(middle.x - size.x * 0.5), floor(middle.y + size.y * 0.5));
    vec2 whole = ceil(size);
    vec2 pixels = topLeft + vec2(place.x, place.y - 1.0) * whole;
    gl_Position.xy = (pixels * 2.0 - screenSize) / screenSize;
    coordinate = vec2(place.x, 1.0 - place.y) * whole / size;
}

void main()
{
    // The first row of the image is its top one.
    coordinate = vec2(textureCoordinate.x, 1.0 - textureCoordinate.y);
    mat4 placement = projection * view * model;
    gl_Position = placement * vec4(position, 1.0);
    vec2 size = vec2(placement[0].x, placement[1].y) * screenSize * 0.5;
    bool isUpright = placement[0].y == 0.0 && placement[1].x == 0.0 && size.x > 0.0 && size.y > 0.0;
    if (isUpright && gl_Position.w == 1.0)
        PlaceUpright(Settle((placement[3].xy * 0.5 + 0.5) * screenSize), Settle(size), textureCoordinate);
}
