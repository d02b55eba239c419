#pragma once

class Fl_Window;

/// Gives a window that is not shown yet the icon of kelpix, in the sizes that desktops use for it.
void setWindowIcon(Fl_Window& window);
