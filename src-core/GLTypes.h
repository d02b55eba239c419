#pragma once

/// \file
/// The GL declarations that the framework's headers need, in whatever order a program includes
/// them. GLEW's header must come before other GL headers. Where another one came first, GLEW is
/// left out and its GL types are used: they are the same.
#ifndef GL_VERSION_1_1
#include <GL/glew.h>
#endif
