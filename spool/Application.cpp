#include "spool/Application.h"

#include "platform/MessageBox.h"
#include "platform/Socket.h"

namespace nadrel {

bool Application::InitInstance() {
    if (platform::StartSocketSupport())
        return true;
    platform::ShowMessage(u"Windows sockets initialization failed.");
    return false;
}

} // namespace nadrel
