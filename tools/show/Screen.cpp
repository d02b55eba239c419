#include "Screen.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/Xrandr.h>
#include <X11/extensions/scrnsaver.h>
#include <X11/keysym.h>
#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>

namespace show {

namespace {

constexpr long TO_ITS_PROGRAM = NoEventMask; // an event: not to the window manager as well
constexpr const char* FULLSCREEN = "_NET_WM_STATE_FULLSCREEN";
// What a kiosk's compositor calls itself. It gives each window the whole screen, but not before it
// has shown it as it opened.
constexpr const char* ONE_WINDOW_MANAGER = "wlroots wm";
constexpr const char* ABOVE = "_NET_WM_STATE_ABOVE";

// A selection: its owner has taken the window manager's place.
constexpr const char* CONDUCTOR = "_KELPIX_SHOW";

bool refused = false; // the X server has refused a request
bool lost = false;    // the X server has gone

/// \return a cursor without a pixel
Cursor blankCursor(Display* display, Window root)
{
    constexpr char NOTHING = 0;
    const Pixmap shape = XCreateBitmapFromData(display, root, &NOTHING, 1, 1);
    XColor color{};
    const Cursor cursor = XCreatePixmapCursor(display, shape, shape, &color, &color, 0, 0);
    XFreePixmap(display, shape);
    return cursor;
}

void keepAwake(Display* display)
{
    int events = 0;
    int errors = 0;
    if (XScreenSaverQueryExtension(display, &events, &errors) != 0) {
        // Until this client has gone.
        XScreenSaverSuspend(display, True);
    }
}

} // namespace

Screen::Screen(Look look) : look(look)
{
    // Xlib's own handlers would print a line, and end the process without its destructors.
    XSetIOErrorHandler([](Display*) { return 0; });
    XSetIOErrorExitHandler(
        display(), [](Display*, void*) { lost = true; }, nullptr);
    blank = blankCursor(display(), desktop.root());
    if (takeManagersPlace()) {
        ground = desktop.root();
    } else if (desktop.managersName() == ONE_WINDOW_MANAGER) {
        ground = makeGround();
    }
    keepAwake(display());
    const auto count = static_cast<int>(monitors().size());
    if (look.monitor && !hasOwnGround() && *look.monitor >= count) {
        throw std::runtime_error("there is no monitor " + std::to_string(*look.monitor) +
                                 ": the X server has " + std::to_string(count) +
                                 ", counted from 0");
    }
    XSync(display(), False);
}

Screen::~Screen()
{
    XFreeCursor(display(), blank);
}

bool Screen::takeManagersPlace()
{
    constexpr long NEWS = StructureNotifyMask | SubstructureNotifyMask;
    const std::string screen = std::to_string(DefaultScreen(display()));
    const Atom place = desktop.atom((CONDUCTOR + screen).c_str());
    // Of two that start at once, one is first in all of this.
    XGrabServer(display());
    XSync(display(), False);
    // Only one client may select this: the window manager.
    const auto before = XSetErrorHandler([](Display*, XErrorEvent*) {
        refused = true;
        return 0;
    });
    XSelectInput(display(), desktop.root(), NEWS | SubstructureRedirectMask);
    XSync(display(), False);
    XSetErrorHandler(before);
    const bool isTaken = refused && XGetSelectionOwner(display(), place) != None;
    if (refused) {
        XSelectInput(display(), desktop.root(), NEWS);
    } else {
        const Window owner = XCreateSimpleWindow(display(), desktop.root(), 0, 0, 1, 1, 0, 0, 0);
        XSetSelectionOwner(display(), place, owner, CurrentTime);
    }
    XUngrabServer(display());
    XFlush(display());
    if (isTaken) {
        throw std::runtime_error("another kelpix-show has this screen: two need a window manager");
    }
    return !refused;
}

Window Screen::makeGround()
{
    XSetWindowAttributes attributes{};
    attributes.background_pixel = BlackPixel(display(), DefaultScreen(display()));
    attributes.cursor = blank;
    attributes.event_mask = StructureNotifyMask | SubstructureNotifyMask | SubstructureRedirectMask;
    const Window window =
        XCreateWindow(display(), desktop.root(), 0, 0, 640, 480, 0, CopyFromParent, InputOutput,
                      CopyFromParent, CWBackPixel | CWCursor | CWEventMask, &attributes);
    char name[] = "kelpix-show";
    char type[] = "Kelpix";
    XClassHint hint{name, type};
    XSetClassHint(display(), window, &hint);
    XStoreName(display(), window, name);
    XMapWindow(display(), window);
    return window;
}

std::vector<Screen::Place> Screen::monitors() const
{
    int count = 0;
    XRRMonitorInfo* const list = XRRGetMonitors(display(), desktop.root(), True, &count);
    std::vector<Place> places;
    if (list != nullptr) {
        for (int i = 0; i < count; ++i) {
            places.push_back({list[i].x, list[i].y, list[i].width, list[i].height});
        }
        XRRFreeMonitors(list);
    }
    return places;
}

Screen::Place Screen::fullScreen() const
{
    if (hasOwnGround()) {
        const Place place = placeOf(ground).value_or(Place{0, 0, 1, 1});
        return {0, 0, place.width, place.height}; // within it
    }
    if (look.monitor || ground == None) {
        const std::vector<Place> places = monitors();
        const auto wanted = static_cast<std::size_t>(look.monitor.value_or(0));
        if (wanted < places.size()) {
            return places[wanted];
        }
        // It has been there at the start, and may come back.
        if (ground == None && !places.empty()) {
            return places.front();
        }
    }
    const int screen = DefaultScreen(display());
    return {0, 0, DisplayWidth(display(), screen), DisplayHeight(display(), screen)};
}

Screen::Scene* Screen::find(Window window)
{
    const auto found = std::find_if(scenes.begin(), scenes.end(),
                                    [&](const Scene& scene) { return scene.window == window; });
    return found == scenes.end() ? nullptr : &*found;
}

Screen::Scene* Screen::recognize(Window window, const Listener& listener)
{
    if (Scene* const known = find(window)) {
        return known;
    }
    const pid_t owner = desktop.owner(window);
    const std::optional<Id> showing = owner != 0 ? listener.whose(owner) : std::nullopt;
    if (!showing || !desktop.isMain(window)) {
        return nullptr;
    }
    XDefineCursor(display(), window, blank);
    scenes.push_back({window, *showing, desktop.isScene(window)});
    if (hasOwnGround()) {
        XReparentWindow(display(), window, ground, 0, 0);
        place(scenes.back());
        XLowerWindow(display(), window);
    }
    return &scenes.back();
}

bool Screen::hasNews() const
{
    if (lost) {
        throw std::runtime_error("the X server has gone");
    }
    return XEventsQueued(display(), QueuedAlready) > 0;
}

void Screen::read(const Listener& listener)
{
    while (XPending(display()) > 0) {
        XEvent event;
        XNextEvent(display(), &event);
        switch (event.type) {
        case CreateNotify:
            if (event.xcreatewindow.window != ground) {
                XSelectInput(display(), event.xcreatewindow.window,
                             StructureNotifyMask | PropertyChangeMask);
            }
            break;
        case MapRequest:
            if (const Scene* const scene = recognize(event.xmaprequest.window, listener)) {
                place(*scene);
                XLowerWindow(display(), scene->window);
            }
            XMapWindow(display(), event.xmaprequest.window);
            break;
        case ConfigureRequest:
            grant(event.xconfigurerequest);
            break;
        case MapNotify:
            appear(recognize(event.xmap.window, listener), listener);
            setMapped(event.xmap.window, true, listener);
            break;
        case UnmapNotify:
            setMapped(event.xunmap.window, false, listener);
            break;
        case ReparentNotify:
            // A window manager may keep it unmapped, behind a full-screen window.
            appear(recognize(event.xreparent.window, listener), listener);
            break;
        case PropertyNotify:
            if (event.xproperty.atom == XA_WM_NAME) {
                readTitle(event.xproperty.window, listener);
            }
            break;
        case DestroyNotify:
            std::erase_if(scenes, [&](const Scene& scene) {
                return scene.window == event.xdestroywindow.window;
            });
            break;
        case ConfigureNotify:
            // The screen has another size.
            XRRUpdateConfiguration(&event);
            if (event.xconfigure.window == ground) {
                for (const Scene& scene : scenes) {
                    place(scene);
                }
            }
            break;
        case MappingNotify:
            XRefreshKeyboardMapping(&event.xmapping);
            break;
        default:
            break;
        }
    }
    XFlush(display());
}

void Screen::appear(const Scene* scene, const Listener& listener) const
{
    if (scene == nullptr) {
        return;
    }
    if (ground == None) {
        place(*scene);
    }
    wake(scene->window);
    if (!scene->tellsRate) {
        listener.onSilent(scene->showing);
    }
}

void Screen::readTitle(Window window, const Listener& listener)
{
    Scene* const scene =
        find(window) != nullptr || desktop.isMapped(window) ? recognize(window, listener) : nullptr;
    const std::optional<double> rate = scene != nullptr ? desktop.rate(window) : std::nullopt;
    if (scene == nullptr || (!rate && !scene->rate)) {
        return;
    }
    // One that has told its rate may go on to another title in the same frame.
    scene->tellsRate = true;
    scene->rate = rate ? rate : scene->rate;
    const int before = framesOf(scene->showing);
    ++scene->frames;
    if (framesOf(scene->showing) > before) {
        listener.onFrame(scene->showing);
    }
}

/// \return the frames of that window which has begun the fewest, of those that tell
int Screen::framesOf(Id showing) const
{
    int fewest = std::numeric_limits<int>::max();
    for (const Scene& scene : scenes) {
        if (scene.showing == showing && scene.tellsRate) {
            fewest = std::min(fewest, scene.frames);
        }
    }
    return fewest;
}

void Screen::setMapped(Window window, bool isMapped, const Listener& listener)
{
    Scene* const changed = find(window);
    if (changed != nullptr) {
        changed->isMapped = isMapped;
        const bool isAnyAway = std::any_of(scenes.begin(), scenes.end(), [&](const Scene& scene) {
            return scene.showing == changed->showing && scene.tellsRate && !scene.isMapped;
        });
        listener.onVisible(changed->showing, !isAnyAway);
    }
}

void Screen::place(const Scene& scene) const
{
    if (isFullscreen()) {
        const Place full = fullScreen();
        if (ground != None) {
            XMoveResizeWindow(display(), scene.window, full.x, full.y,
                              static_cast<unsigned>(full.width),
                              static_cast<unsigned>(full.height));
        } else {
            // It is not made full screen yet: that would put it in front.
            removeDecorations(scene.window);
            askForPlace(scene.window, full);
        }
        return;
    }
    const auto isOther = [&](const Scene& other) { return other.showing != scene.showing; };
    const auto before = std::find_if(scenes.begin(), scenes.end(), isOther);
    if (ground == None && before != scenes.end() && hasOneWindow(scene.showing) &&
        hasOneWindow(before->showing)) {
        if (const std::optional<Place> place = placeOf(before->window)) {
            askForPlace(scene.window, *place);
        }
    }
}

/// Of several windows each opens at a place of its own.
bool Screen::hasOneWindow(Id showing) const
{
    return std::count_if(scenes.begin(), scenes.end(),
                         [&](const Scene& scene) { return scene.showing == showing; }) == 1;
}

std::optional<Screen::Place> Screen::placeOf(Window window) const
{
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display(), window, &attributes) == 0) {
        return {};
    }
    Place place{0, 0, attributes.width, attributes.height};
    Window unused = None;
    XTranslateCoordinates(display(), window, desktop.root(), 0, 0, &place.x, &place.y, &unused);
    return place;
}

void Screen::removeDecorations(Window window) const
{
    constexpr unsigned long DECORATIONS = 2; // the field that counts
    const unsigned long hints[] = {DECORATIONS, 0, 0, 0, 0};
    const Atom property = desktop.atom("_MOTIF_WM_HINTS");
    XChangeProperty(display(), window, property, property, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(hints), 5);
}

void Screen::askForPlace(Window window, const Place& place) const
{
    // The place is that of the scene itself, not of a frame around it; all four numbers count.
    constexpr long FLAGS = StaticGravity | 1 << 8 | 1 << 9 | 1 << 10 | 1 << 11 | 1 << 12;
    desktop.askManager(window, "_NET_MOVERESIZE_WINDOW",
                       {FLAGS, place.x, place.y, place.width, place.height});
}

void Screen::wake(Window window) const
{
    // FLTK draws nothing before the X server asks it to, and a window that is hidden behind another
    // one is not asked.
    XEvent event{};
    event.xexpose.type = Expose;
    event.xexpose.window = window;
    event.xexpose.width = 1;
    event.xexpose.height = 1;
    XSendEvent(display(), window, False, TO_ITS_PROGRAM, &event);
}

void Screen::grant(const XConfigureRequestEvent& request) const
{
    XWindowChanges changes{};
    changes.x = request.x;
    changes.y = request.y;
    changes.width = request.width;
    changes.height = request.height;
    changes.border_width = request.border_width;
    // What is in front is not theirs to decide.
    const auto wanted = static_cast<unsigned>(request.value_mask) &
                        (CWX | CWY | CWWidth | CWHeight | CWBorderWidth);
    XConfigureWindow(display(), request.window, wanted, &changes);
}

void Screen::forEach(Id showing, const std::function<void(Window)>& action) const
{
    for (const Scene& scene : scenes) {
        if (scene.showing == showing) {
            action(scene.window);
        }
    }
    XFlush(display());
}

void Screen::hold(Id showing) const
{
    forEach(showing, [&](Window window) { desktop.setState(window, ABOVE, true); });
}

void Screen::dress(Id showing) const
{
    forEach(showing, [&](Window window) { desktop.turnWheel(window, look.zoom); });
}

void Screen::raise(Id showing) const
{
    forEach(showing, [&](Window window) {
        if (ground != None) {
            XRaiseWindow(display(), window);
            XSetInputFocus(display(), window, RevertToPointerRoot, CurrentTime);
            return;
        }
        if (look.fullscreen) {
            desktop.setState(window, FULLSCREEN, true);
        }
        desktop.setState(window, ABOVE, true);
        // As a pager asks for it, which no manager refuses.
        desktop.askManager(window, "_NET_ACTIVE_WINDOW", {2, CurrentTime, 0});
    });
}

void Screen::settle(Id showing) const
{
    if (!look.fullscreen) {
        forEach(showing, [&](Window window) { desktop.setState(window, ABOVE, false); });
    }
}

bool Screen::pressQ(Id showing) const
{
    const KeyCode q = XKeysymToKeycode(display(), XK_q);
    if (q == 0 || XkbKeycodeToKeysym(display(), q, 0, 0) != XK_q) {
        return false;
    }
    forEach(showing, [&](Window window) {
        // FLTK takes keys for the window that it believes to have the focus.
        XEvent event{};
        event.xfocus.type = FocusIn;
        event.xfocus.window = window;
        event.xfocus.mode = NotifyNormal;
        event.xfocus.detail = NotifyNonlinear;
        XSendEvent(display(), window, False, TO_ITS_PROGRAM, &event);
        event = {};
        event.xkey.window = window;
        event.xkey.root = desktop.root();
        event.xkey.same_screen = True;
        event.xkey.keycode = q;
        for (const int type : {KeyPress, KeyRelease}) {
            event.type = type;
            XSendEvent(display(), window, False, TO_ITS_PROGRAM, &event);
        }
    });
    return true;
}

std::optional<double> Screen::rate(Id showing) const
{
    const auto found = std::find_if(scenes.begin(), scenes.end(),
                                    [&](const Scene& scene) { return scene.showing == showing; });
    return found == scenes.end() || found->rate == 0 ? std::nullopt : found->rate;
}

} // namespace show
