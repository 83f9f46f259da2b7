#pragma once

namespace platform {

// An object of static storage that outlives the process's last moments: the host may exit while threads use
// it. It takes no memory from the heap, so that nothing can fail when it is first needed.
template <typename Object>
union NeverDestroyed {
  public:
    constexpr NeverDestroyed() : object() {}
    ~NeverDestroyed() {}
    NeverDestroyed(const NeverDestroyed &) = delete;
    NeverDestroyed &operator=(const NeverDestroyed &) = delete;

    Object object;
};

} // namespace platform
