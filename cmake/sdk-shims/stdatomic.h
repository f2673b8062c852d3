#pragma once

// Told to count references atomically (SMTG_USE_STDATOMIC_H), the SDK's FUnknown code includes
// the C header <stdatomic.h>. Before C++23 a C++ compiler offers the same names only in <atomic>.
#include <atomic>

using std::atomic_fetch_add;
using std::atomic_int_least32_t;
