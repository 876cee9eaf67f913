// GunList: the document, the one list of GunData records.
#pragma once
#include "base/cursor_list.h"

// Owns its records: whoever removes a node gives its record back with memFree. Defined with the
// other static objects, so that it is constructed in the start-up order.
extern CursorList GunList;
