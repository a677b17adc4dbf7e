#pragma once

#include <cstdlib>
#include <memory>

// Owns a reply or event that xcb allocated with malloc.
struct QVXcbFree final {
    void operator()(void *pointer) const { std::free(pointer); }
};

template<typename T> using QVXcbReply = std::unique_ptr<T, QVXcbFree>;
