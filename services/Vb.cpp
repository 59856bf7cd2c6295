#include "services/Vb.h"
