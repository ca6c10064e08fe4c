#include "command/sender.h"

#include "common/run_error.h"
#include "common/text.h"

namespace kelpa {

void Sender::S_SendData(std::string& X) {
    if (socket_.state() != Socket::kConnected) return;
    X = replaceAll(X, ";;", "\r\n");
    X = replaceAll(X, "\\.", "");
    std::string lineEnds;
    if (serverEchoes_)
        for (char c : X)
            if (c == '\r' || c == '\n') lineEnds += c;
    const std::string& shown = serverEchoes_ ? lineEnds : X;
    log_.print(shown);
    try {
        writer_.W_Print(shown, kMainWindow);
    } catch (const RunError&) {
        // A sequence the echo cannot show ends the echo only; the text is
        // still kept and sent.
    }
    history_.append(shown);
    if (!socket_.sendData(X)) debug_.DebugLog(Socket::refusedLine(X, !serverEchoes_));
}

void Sender::s_queuedata(std::string& X) {
    if (QueueSlots.size() >= kQueueSlots) {
        // Quoted: a text that ends in ";" would leave the debug line open.
        debug_.DebugLog("Queue full, not queued: " + quoted(X));
        return;
    }
    QueueSlots.push_back(X);
}

void Sender::S_SendDataNoSpam(std::string& X) {
    if (X == LastNoSpam) return;
    LastNoSpam = X;
    S_SendData(X);
}

int Sender::queueTick() {
    const int interval = static_cast<int>(random_.next() * 3000) + 1;
    LastNoSpam.clear();
    if (QueueSlots.empty()) return interval;
    std::string entry = std::move(QueueSlots.front());
    QueueSlots.pop_front();
    if (entry == "###") {
        host_.endProgramNow();
        return interval;
    }
    try {
        S_SendData(entry);
    } catch (const std::exception&) {
        // The tick goes on whatever the send met.
    }
    return interval;
}

}  // namespace kelpa
