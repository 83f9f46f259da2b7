#include "printer/Session.h"

namespace printer {

void Session::Receive(ByteView bytes) {
    std::vector<Command> commands;
    decoder_.Feed(bytes, commands);
    Take(commands);
}

void Session::Finish() {
    std::vector<Command> commands;
    decoder_.Finish(commands);
    Take(commands);
}

void Session::GiveUpFrame() {
    std::vector<Command> commands;
    decoder_.GiveUpFrame(commands);
    Take(commands);
}

void Session::Take(const std::vector<Command> &commands) {
    const bool waited = IsWaitingForPaper();
    waiting_.insert(waiting_.end(), commands.begin(), commands.end());
    Continue();
    if (IsWaitingForPaper() && !waited)
        Send(replies_.Report(true));
}

void Session::Continue() {
    while (!waiting_.empty() && printer_.CanExecute(waiting_.front())) {
        const Command &command = waiting_.front();
        printer_.Execute(command);
        Send(replies_.Answer(command, printer_.Status()));
        const Kind kind = command.GetKind();
        readersEntered_ += (kind == Kind::EnterReader || kind == Kind::CardRead) && replies_.IsReading();
        waiting_.pop_front();
    }
}

void Session::ReportPrintOut() {
    if (!IsWaitingForPaper())
        Send(replies_.Report(printer_.IsPaperOut()));
}

bool Session::Swipe() {
    Send(replies_.Swipe());
    return replies_.IsReading();
}

} // namespace printer
