#include "tools/StatusCommand.h"

#include "tools/NotificationQueue.h"

#include "api/NadrelPrinter.h"

#include <iostream>
#include <thread>

namespace tool {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// From the request to the notification; the library itself takes up to 0.2 s of it.
constexpr std::chrono::milliseconds kPatience = 2s;

// A status that begins like another kind of reply comes as that kind.
constexpr std::string_view kStatusKinds = "SDN";

// A status query whose answer came as another kind, or was 00, is still open, and claims a plain reply to a
// later request.
constexpr std::string_view kPlainTextKinds = "DS";
constexpr std::string_view kFramedTextKinds = "D";

constexpr auto kOneRequest = 300ms;

// A status query asks again every 200 ms. Where it asked more than once, the other answers are still to come:
// they are awaited, because the first of them would pass for the answer to the next question.
bool AskStatus(int32_t timeoutMs) {
    const auto start = Clock::now();
    const bool answered = GetPrinterStatus(timeoutMs) == NADREL_SUCCESS;
    const auto elapsed = Clock::now() - start;
    if (answered && elapsed > kOneRequest)
        std::this_thread::sleep_for(elapsed);
    return answered;
}

std::string StatusText(const std::optional<Notification> &reply) {
    if (!reply)
        return "not told, as with a byte 00";
    return reply->status ? Hex({*reply->status}) : Hex(reply->data);
}

// On a framed link the reply's letter comes first.
std::string ReplyText(std::optional<Notification> reply, bool framed) {
    if (!reply)
        return "no answer";
    if (framed && !reply->data.empty() && reply->data.front() == 'D')
        reply->data.erase(reply->data.begin());
    return Printable(reply->data);
}

std::string Ask(void (*request)(), NotificationQueue &queue, bool framed) {
    queue.Clear();
    request();
    return ReplyText(queue.WaitFor(framed ? kFramedTextKinds : kPlainTextKinds, kPatience), framed);
}

} // namespace

ExitStatus StatusCommand(const StatusOptions &options) {
    const Link link(options.link);
    NotificationQueue queue;
    const Listening listening(&NotificationQueue::Handle, &queue);
    const bool answered = AskStatus(options.timeoutMs);
    std::cout << "answered  " << (answered ? "yes" : "no") << std::endl;
    if (!answered)
        return ExitStatus::failed;
    std::cout << "status    " << StatusText(queue.WaitFor(kStatusKinds, kPatience)) << std::endl;
    std::cout << "model     " << Ask(&GetPrinterModelName, queue, options.link.framed) << std::endl;
    std::cout << "firmware  " << Ask(&GetFirmwareVersion, queue, options.link.framed) << std::endl;
    return ExitStatus::fine;
}

} // namespace tool
