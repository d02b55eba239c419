// The least work up to a first frame: an empty window. With an argument, the file of the bodies'
// points, it also decodes the scene's media and makes the bodies' display lists.

#include <GL/glew.h>

#include "Bare.h"
#include "Data.h"
#include "ReadyBody.h"

#include <FL/Fl.H>
#include <FL/Fl_Gl_Window.H>
#include <cstring>
#include <future>

namespace {

class EmptyWindow : public Fl_Gl_Window {
public:
    explicit EmptyWindow(const bench::ReadyBody& ready) : Fl_Gl_Window(740, 740), body(ready)
    {
        mode(FL_DOUBLE | FL_ACCUM | FL_ALPHA | FL_DEPTH);
    }

    void draw() override
    {
        valid(1);
        glewInit();
        for (int figure = 0; figure < 3 && !body.frames.empty(); ++figure) {
            body.compile();
        }
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }

private:
    const bench::ReadyBody& body;
};

bench::ReadyBody readBody(const char* path)
{
    bench::ReadyBody body;
    const std::string bytes = bench::readFile(path);
    body.frames.resize(bytes.size() / sizeof body.frames[0]);
    std::memcpy(body.frames.data(), bytes.data(), bytes.size());
    return body;
}

} // namespace

int main(int argc, char** argv)
{
    bench::ReadyBody body;
    if (argc > 1) {
        const auto voice = std::async([] { return bench::decodeOgg("sound/magpie_vocal.ogg"); });
        const auto bubbles = std::async([] { return bench::decodeOgg("sound/bubbles_sound.ogg"); });
        body = readBody(argv[1]);
        voice.wait();
        bubbles.wait();
        bench::decodeNumbers("data/dance.txt");
        bench::decodeNumbers("data/rehearsal.txt");
        bench::decodeJpeg("data/underwater.jpg");
        bench::decodePng("data/fish0.png");
    }
    EmptyWindow window(body);
    window.end();
    window.show();
    for (;;) {
        Fl::wait();
    }
}
