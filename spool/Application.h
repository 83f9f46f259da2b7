#pragma once

namespace nadrel {

// The library as the operating system loads it: one static object, constructed at load. An open link is not
// closed when it goes.
class Application {
  public:
    // Starts socket support; tells the user and gives false where there is none.
    bool InitInstance();
};

} // namespace nadrel
