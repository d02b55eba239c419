#include "Score.h"
