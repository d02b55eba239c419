#include "Window.h"

#include "AppManager.h"
#include "FreeType.h"
#include "Matrix.h"
#include "Node.h"
#include "SceneGraph.h"
#include "ScreenPosition.h"
#include "UserEvent.h"

#include <FL/Fl.H>
#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

/// The largest magnitude in a column of a matrix.
float magnitude(const float* column)
{
    float largest = 0;
    for (int row = 0; row < 4; ++row) {
        largest = std::fmax(largest, std::fabs(column[row]));
    }
    return largest;
}

/// Whether further input can still change a node with this transform: all elements are finite, and
/// the scales in x and y are not denormal, where a multiplication loses bits or gives 0.
bool isUsable(const float* m)
{
    return std::all_of(m, m + 16, [](float element) { return std::isfinite(element); }) &&
           std::isnormal(magnitude(m)) && std::isnormal(magnitude(m + 4));
}

/// Calls \p move, which changes the node's transform, and restores the transform if it is not
/// usable afterwards: further input could not undo such a move.
/// \return whether the node moved
template<typename Move>
bool moveNode(Node* node, Move move)
{
    float before[16];
    Matrix::dump_matrix(before, node->glTransform());
    move();
    if (isUsable(before) && !isUsable(node->glTransform())) {
        Matrix::dump_matrix(node->glTransform(), before);
        return false;
    }
    return true;
}

} // namespace

Window::Window(int id, int x, int y, int w, int h)
    : Fl_Gl_Window(x, y, w, h, ""), windowId(id), height(h), width(w), origin{x, y}
{
    mode(FL_DOUBLE | FL_ACCUM | FL_ALPHA | FL_DEPTH);
    std::printf("Loading...\n");
    Fl::add_timeout(0.0, timer, this);
}

Window::~Window()
{
    for (const Fl_Timeout_Handler callback : {timer, timerIdle, timerRedraw}) {
        Fl::remove_timeout(callback, this);
    }
}

void Window::setOffset(float x, float y)
{
    offset[0] = x;
    offset[1] = y;
}

void Window::initGL()
{
    valid(1);

    std::printf(glewInit() == GLEW_OK ? "GLEW ok; " : "GLEW failed; ");
    const bool shaders = GLEW_ARB_vertex_shader && GLEW_ARB_fragment_shader;
    std::printf(shaders ? "can do GLSL; " : "can't do GLSL; ");
    std::printf(GLEW_ARB_vertex_buffer_object ? "can do VBO; " : "can't do VBO; ");
    std::printf("\n");

    glClearColor(0.02f, 0.1f, 0.15f, 1.0f);
    glEnable(GL_SCISSOR_TEST);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT, GL_AMBIENT);

    render.getCamera()->ortho2D(0, 0, width, height, offset);
    if (const Node* root = rootNode()) {
        pscale = root->transformmat[0];
    }
    if (our_font != nullptr) {
        our_font->init("fonts/ChalkboardBold.ttf", 12);
    }
}

void Window::draw()
{
    if (!valid()) {
        initGL();
        if (w() != width || h() != height) {
            render.getCamera()->reshape(0, 0, w(), h());
        }
    }
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    render.frame();
    std::snprintf(title, sizeof title, "kelpix (%3.1f fps)", static_cast<double>(fps));
    label(title);
    if (drawcallback != nullptr) {
        drawcallback(this);
    }
    ++frames;
}

void Window::idle()
{
    if (windowId == 1 && valid()) {
        render.idleFrame();
    }
}

void Window::resize(int x, int y, int w, int h)
{
    // The setters of Fl_Widget, which only store.
    this->x(x);
    this->y(y);
    this->w(w);
    this->h(h);
    if (context() == nullptr) {
        return;
    }
    // FLTK may call this while the context of another window is current.
    make_current();
    render.getCamera()->reshape(x, y, w, h);
}

int Window::handle(int event)
{
    switch (event) {
    case FL_PUSH:
        if (Fl::event_button() == FL_RIGHT_MOUSE) {
            click(Fl::event_x(), Fl::event_y());
            MOUSE[0] = Fl::event_x();
            MOUSE[1] = Fl::event_y();
        }
        return 1;
    case FL_DRAG:
        return drag();
    case FL_KEYDOWN:
        if (Fl::event_key() == 'q' || Fl::event_key() == 'Q') {
            hide();
        } else if (Fl::event_key() == ' ') {
            click(MOUSE[0], MOUSE[1]);
        }
        return 1;
    case FL_CLOSE:
        std::printf("Closing window.\n");
        return 0;
    case FL_MOVE:
        MOUSE[0] = Fl::event_x();
        MOUSE[1] = Fl::event_y();
        return 1;
    case FL_MOUSEWHEEL:
        zoom(Fl::event_dy());
        return 1;
    case FL_SHOW:
        if (shown()) {
            const ScreenPosition origin = screenPosition(*this);
            x(origin.x);
            y(origin.y);
        }
        return 0;
    default:
        return 0;
    }
}

void Window::click(int x, int y)
{
    SceneGraph* graph = render.getSG();
    if (graph == nullptr) {
        return;
    }
    auto* event = new UserEvent(MOUSE_CLICK);
    event->eventData[0] = static_cast<float>(x);
    event->eventData[1] = static_cast<float>(y);
    event->eventData[2] = pscale;
    graph->event(event);
}

int Window::drag()
{
    const int dx = Fl::event_x() - MOUSE[0];
    const int dy = Fl::event_y() - MOUSE[1];
    switch (Fl::event_key()) {
    case 'v':
        pan(dx, dy);
        break;
    case 'z':
        turn(0, 0, 1, dy);
        break;
    case 'x':
        turn(1, 0, 0, dy);
        break;
    case 'c':
        turn(0, 1, 0, dy);
        break;
    default:
        return 1;
    }
    MOUSE[0] = Fl::event_x();
    MOUSE[1] = Fl::event_y();
    return 1;
}

void Window::pan(int dx, int dy)
{
    if (Node* root = rootNode()) {
        const float x = static_cast<float>(dx) / 1000;
        const float y = static_cast<float>(-dy) / 1000;
        moveNode(root, [&] { root->translate(x, y, 0); });
    }
}

void Window::turn(float x, float y, float z, int dy)
{
    const SceneGraph* graph = render.getSG();
    if (Node* pivot = graph != nullptr ? graph->pivotNode : nullptr) {
        // Slower when zoomed in.
        const float angle = static_cast<float>(dy) / pscale;
        moveNode(pivot, [&] { pivot->rotate(x, y, z, angle); });
    }
}

void Window::zoom(int dy)
{
    Node* root = rootNode();
    if (root == nullptr || dy == 0) {
        return;
    }
    const bool in = dy < 0;
    const float factor = in ? 1.25f : 0.8f;
    const float next = in ? pscale * 1.25f : pscale / 1.25f;
    if (std::isnormal(pscale) && !std::isnormal(next)) {
        return;
    }
    if (moveNode(root, [&] { root->scale(factor, factor, 1); })) {
        pscale = next;
    }
}

Node* Window::rootNode()
{
    const SceneGraph* graph = render.getSG();
    return graph != nullptr ? graph->rootNode : nullptr;
}

void timer(void* w)
{
    if (w != nullptr) {
        auto* window = static_cast<Window*>(w);
        window->fps = static_cast<float>(window->frames);
        window->frames = 0;
    }
    Fl::repeat_timeout(1.0, timer, w);
}
