#include "all.h"
int area_of_larger(int x);
namespace
{
struct Shape {
    virtual ~Shape() = default;
    virtual int area() const { return 0; }
};
struct Square : Shape {
    int area() const override { return 4; }
};
} // namespace
int area_of_larger(int x)
{
    const Square square;
    const Shape& shape = square;
    return shape.area() + larger(x, 2);
}
