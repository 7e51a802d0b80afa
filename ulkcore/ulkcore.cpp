#include "ulkcore.h"
