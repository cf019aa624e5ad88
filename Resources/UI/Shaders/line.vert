#version 330 core

// Widens a polyline to triangles. There are no vertex attributes: the points lie in a uniform block, and the vertex's
// number tells segment and corner. All work is done in pixels of the window, the origin at the bottom left.
//
// A horizontal or vertical segment covers whole pixels, exactly as many as it is thick, so that multisampling leaves it
// crisp: an edge that falls on half a pixel goes right or downward. Any other segment is left to multisampling.

layout(std140) uniform Shared
{
    mat4 projection;
    mat4 view;
    vec2 screenSize;
};

// The polyline with one more point at each end, so that every segment has a neighbour on both sides. At binding point
// 0, where a block is that nobody moves.
layout(std140) uniform Points
{
    vec4 points[64];
};

uniform mat4 model;
uniform float thickness;
uniform float gapLength;

out float opacity;
out float lineDistance; // pixels from the line's beginning

// Positions are settled to this fraction of a pixel, or the rounding of the matrices would decide where half a pixel
// goes.
const float settledSteps = 64.0;
// How far from its point a corner may lie, in halves of the thickness. Beyond it both segments end for themselves.
const float miterLimit = 4.0;
// Below this sine of their angle two segments are one straight line.
const float straightSine = 0.001;

float halfThickness;

vec3 ToWindow(int index)
{
    vec4 clip = projection * view * model * vec4(points[index].xyz, 1.0);
    if (clip.w <= 0.0)
        return vec3(0.0);
    vec2 pixels = (clip.xy / clip.w * 0.5 + 0.5) * screenSize;
    return vec3(floor(pixels * settledSteps + 0.5) / settledSteps, clip.z / clip.w);
}

// Exactly 1 along an axis, which `normalize` doesn't promise.
vec2 GetDirection(vec2 from, vec2 to)
{
    vec2 way = to - from;
    if (way.x == 0.0 || way.y == 0.0)
        return sign(way);
    return normalize(way);
}

bool IsAlongAxis(vec2 direction)
{
    return direction.x == 0.0 || direction.y == 0.0;
}

vec2 GetNormal(vec2 direction)
{
    return vec2(-direction.y, direction.x);
}

float Cross(vec2 left, vec2 right)
{
    return left.x * right.y - left.y * right.x;
}

// The whole pixel's border next to a position; halves go right and downward.
vec2 ToPixelBorder(vec2 position)
{
    return vec2(floor(position.x + 0.5), ceil(position.y - 0.5));
}

// The distance from a point of a segment to the segment's edge on one side (1 is left of the direction, -1 right of
// it), along the normal.
float GetEdgeOffset(vec2 point, vec2 direction, float side)
{
    if (!IsAlongAxis(direction))
        return side * halfThickness;
    vec2 normal = GetNormal(direction);
    vec2 size = abs(normal) * floor(halfThickness * 2.0 + 0.5);
    vec2 low = ToPixelBorder(point - size * 0.5);
    vec2 edge = dot(normal, vec2(side)) > 0.0 ? low + size : low;
    return dot(edge - point, normal);
}

// The corner of a segment that ends without regard to a neighbour.
vec2 GetStraightCorner(vec2 point, vec2 direction, float side, float extension)
{
    vec2 end = point + direction * extension;
    if (IsAlongAxis(direction))
        end = mix(point, ToPixelBorder(end), abs(direction));
    return end + GetNormal(direction) * GetEdgeOffset(point, direction, side);
}

// Where the edges of two segments meet on one side, seen from their common point.
vec2 GetMiter(vec2 point, vec2 incoming, vec2 outgoing, float side)
{
    vec2 first = GetNormal(incoming);
    vec2 second = GetNormal(outgoing);
    float firstOffset = GetEdgeOffset(point, incoming, side);
    float secondOffset = GetEdgeOffset(point, outgoing, side);
    return vec2(firstOffset * second.y - secondOffset * first.y, first.x * secondOffset - second.x * firstOffset) /
           Cross(first, second);
}

// Whether a mitre stays near its point and leaves each segment its other half.
bool IsMiterGood(vec2 miter, vec2 incoming, vec2 outgoing, vec2 lengths)
{
    float limit = miterLimit * halfThickness;
    return dot(miter, miter) <= limit * limit && -dot(miter, incoming) <= lengths.x * 0.5 &&
           dot(miter, outgoing) <= lengths.y * 0.5;
}

// The corner at `point`, where the segment from `before` meets the segment to `after`. Both segments come to the same
// result unless the joint has no mitre.
vec2 GetCorner(vec2 before, vec2 point, vec2 after, float side, bool isEnd)
{
    vec2 incoming = GetDirection(before, point);
    vec2 outgoing = GetDirection(point, after);
    if (before != point && after != point)
    {
        float turn = abs(Cross(incoming, outgoing));
        bool isSameKind = IsAlongAxis(incoming) == IsAlongAxis(outgoing);
        if (turn < straightSine && isSameKind && dot(incoming, outgoing) > 0.0)
        {
            vec2 direction = IsAlongAxis(incoming) ? incoming : normalize(incoming + outgoing);
            return GetStraightCorner(point, direction, side, 0.0);
        }
        if (turn >= straightSine)
        {
            vec2 miter = GetMiter(point, incoming, outgoing, side);
            vec2 opposite = GetMiter(point, incoming, outgoing, -side);
            vec2 lengths = vec2(distance(before, point), distance(point, after));
            if (IsMiterGood(miter, incoming, outgoing, lengths) && IsMiterGood(opposite, incoming, outgoing, lengths))
                return point + miter;
        }
    }
    // The overlap of the two ends is drawn once: the second fails the depth test.
    return isEnd ? GetStraightCorner(point, incoming, side, halfThickness)
                 : GetStraightCorner(point, outgoing, side, -halfThickness);
}

float GetDistanceBefore(int first)
{
    float sum = 0.0;
    for (int index = 1; index < first; ++index)
        sum += distance(ToWindow(index).xy, ToWindow(index + 1).xy);
    return sum;
}

void main()
{
    int first = gl_VertexID / 6 + 1;
    int corner = gl_VertexID % 6;
    bool isEnd = corner == 1 || corner == 2 || corner == 4;
    float side = corner == 2 || corner == 4 || corner == 5 ? 1.0 : -1.0;
    int joint = isEnd ? first + 1 : first;
    halfThickness = max(thickness, 1.0) * 0.5;

    vec2 start = ToWindow(first).xy;
    vec2 end = ToWindow(first + 1).xy;
    opacity = points[joint].w;
    lineDistance = 0.0;
    if (start == end || thickness <= 0.0)
    {
        // All six vertices in one place: nothing is drawn.
        gl_Position = vec4(0.0, 0.0, 0.0, 1.0);
        return;
    }

    vec3 point = ToWindow(joint);
    vec2 position = GetCorner(ToWindow(joint - 1).xy, point.xy, ToWindow(joint + 1).xy, side, isEnd);
    if (gapLength > 0.0)
    {
        vec2 direction = GetDirection(start, end);
        vec2 origin = IsAlongAxis(direction) ? ToPixelBorder(start) : start;
        lineDistance = GetDistanceBefore(first) + dot(position - origin, direction);
    }
    gl_Position = vec4((position * 2.0 - screenSize) / screenSize, point.z, 1.0);
}
