#include "Node.h"

#include "Matrix.h"

Node::Node()
{
    Matrix::load_identity(transformmat);
}

void Node::translate(float x, float y, float z)
{
    float m[16];
    Matrix::location(m, x, y, z);
    multiply(m);
}

void Node::scale(float x, float y, float z)
{
    float m[16];
    Matrix::scale(m, x, y, z);
    multiply(m);
}

void Node::rotate(float x, float y, float z, float angle)
{
    float m[16];
    Matrix::rotation(m, x, y, z, angle);
    multiply(m);
}

void Node::multiply(const float* elementary)
{
    Matrix::do_multiply(transformmat, transformmat, elementary);
}

void Node::attachChild(Node* child)
{
    if (child == nullptr) {
        return;
    }
    children.push_back(child);
    child->setParent(this);
}

void Node::update()
{
    if (updateptr != nullptr) {
        updateptr(this);
    } else {
        doupdate();
    }
}
