#include <GL/glew.h>

#include "Window.h"

#include "FreeType.h"
#include "Node.h"
#include "SceneGraph.h"
#include "UserEvent.h"

#include <FL/Fl.H>
#include <cmath>
#include <cstdio>

namespace {

constexpr int LAST_HANDLED_EVENT = FL_MOUSEWHEEL;

/// Degrees that a drag of \p dy pixels turns the pivot: slower when zoomed in.
float turnAngle(int dy, float pscale)
{
    const float angle = static_cast<float>(dy) / pscale;
    return std::isfinite(angle) ? angle : 0;
}

bool isUsableScale(float scale)
{
    return std::isfinite(scale) && scale != 0;
}

} // namespace

Window::Window(int id, int x, int y, int w, int h)
    : Fl_Gl_Window(x, y, w, h), windowId(id), height(h), width(w), origin{x, y}, early{w, h}
{
    mode(FL_DOUBLE | FL_ACCUM | FL_ALPHA | FL_DEPTH);
    std::printf("Loading...\n");
    Fl::add_timeout(0.0, timer, this);
}

Window::~Window()
{
    Fl::remove_timeout(timer, this);
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
    if (const SceneGraph* graph = render.getSG(); graph && graph->rootNode) {
        pscale = graph->rootNode->transformmat[0];
    }
    if (our_font) {
        our_font->init("fonts/ChalkboardBold.ttf", 12);
    }
}

void Window::draw()
{
    if (!valid()) {
        initGL();
        if (early.w != width || early.h != height) {
            render.getCamera()->reshape(0, 0, early.w, early.h);
            early = {width, height};
        }
    }
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    render.frame();
    std::snprintf(title, sizeof title, "kelpix (%3.1f fps)", static_cast<double>(fps));
    label(title);
    if (drawcallback) {
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
    if (!context()) {
        early = {w, h};
        return;
    }
    render.getCamera()->reshape(x, y, w, h);
}

int Window::handle(int event)
{
    if (event > LAST_HANDLED_EVENT) {
        return 0;
    }
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
    default:
        return 0;
    }
}

void Window::click(int x, int y)
{
    SceneGraph* graph = render.getSG();
    if (!graph) {
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
    SceneGraph* graph = render.getSG();
    Node* root = graph ? graph->getRootNode() : nullptr;
    Node* pivot = graph ? graph->getPivotNode() : nullptr;
    const int dx = Fl::event_x() - MOUSE[0];
    const int dy = Fl::event_y() - MOUSE[1];
    switch (Fl::event_key()) {
    case 'v':
        if (root) {
            root->translate(static_cast<float>(dx) / 1000, static_cast<float>(-dy) / 1000, 0);
        }
        break;
    case 'z':
        if (pivot) {
            pivot->rotate(0, 0, 1, turnAngle(dy, pscale));
        }
        break;
    case 'x':
        if (pivot) {
            pivot->rotate(1, 0, 0, turnAngle(dy, pscale));
        }
        break;
    case 'c':
        if (pivot) {
            pivot->rotate(0, 1, 0, turnAngle(dy, pscale));
        }
        break;
    default:
        return 1;
    }
    MOUSE[0] = Fl::event_x();
    MOUSE[1] = Fl::event_y();
    return 1;
}

void Window::zoom(int dy)
{
    SceneGraph* graph = render.getSG();
    Node* root = graph ? graph->getRootNode() : nullptr;
    if (!root || dy == 0) {
        return;
    }
    const bool in = dy < 0;
    const float factor = in ? 1.25f : 0.8f;
    const float next = in ? pscale * 1.25f : pscale / 1.25f;
    // Endless turning of the wheel must not leave a scale from which no step leads back.
    if (!isUsableScale(next) || !isUsableScale(root->transformmat[0] * factor)) {
        return;
    }
    root->scale(factor, factor, 1);
    pscale = next;
}

void timer(void* w)
{
    if (w) {
        auto* window = static_cast<Window*>(w);
        window->fps = static_cast<float>(window->frames);
        window->frames = 0;
    }
    Fl::repeat_timeout(1.0, timer, w);
}
