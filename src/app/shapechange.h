#pragma once

/// Counts a change of the item tree's shape for the length of a scope, so that what the view does
/// meanwhile (an editor closed under a node that goes) is told from what the user does.
class ShapeChange final
{
public:
    explicit ShapeChange(int& depth)
        : m_depth(depth)
    {
        ++m_depth;
    }
    ~ShapeChange() { --m_depth; }
    ShapeChange(const ShapeChange&) = delete;
    ShapeChange& operator=(const ShapeChange&) = delete;

private:
    int& m_depth;
};
