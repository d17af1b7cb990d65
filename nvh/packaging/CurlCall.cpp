#include "nvh/packaging/CurlCall.h"

#include <algorithm>
#include <array>

namespace {

constexpr int kGraceMs = 2000;

struct ExitCode {
    int code;
    const char* name;  // curl's
};

// curl's exit codes for a request that has not gone out whole or an answer that has not come in whole, whatever has
// come in. The others say nothing about that.
constexpr std::array kPartialTransfers = {
    ExitCode{8, "CURLE_WEIRD_SERVER_REPLY"},
    ExitCode{16, "CURLE_HTTP2"},
    ExitCode{18, "CURLE_PARTIAL_FILE"},
    ExitCode{23, "CURLE_WRITE_ERROR"},
    ExitCode{25, "CURLE_UPLOAD_FAILED"},
    ExitCode{26, "CURLE_READ_ERROR"},
    ExitCode{27, "CURLE_OUT_OF_MEMORY"},
    ExitCode{28, "CURLE_OPERATION_TIMEDOUT"},
    ExitCode{52, "CURLE_GOT_NOTHING"},
    ExitCode{55, "CURLE_SEND_ERROR"},
    ExitCode{56, "CURLE_RECV_ERROR"},
    ExitCode{61, "CURLE_BAD_CONTENT_ENCODING"},
    ExitCode{63, "CURLE_FILESIZE_EXCEEDED"},
    ExitCode{65, "CURLE_SEND_FAIL_REWIND"},
    ExitCode{81, "CURLE_AGAIN"},
    ExitCode{92, "CURLE_HTTP2_STREAM"},
    ExitCode{95, "CURLE_HTTP3"},
    ExitCode{96, "CURLE_QUIC_CONNECT_ERROR"},
};

// Null for a code that says nothing about the transfer.
const char* partialTransferName(int code) {
    const auto* found = std::find_if(kPartialTransfers.begin(), kPartialTransfers.end(),
                                     [code](const ExitCode& entry) { return entry.code == code; });
    return found == kPartialTransfers.end() ? nullptr : found->name;
}

}  // namespace

CurlCall::CurlCall(ServerAnswer::Wanted wanted, QObject* parent) : QObject(parent), mWanted(wanted) {
    connect(&mProcess, &QProcess::errorOccurred, this, &CurlCall::heedError);
    connect(&mProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            [this] { enter(State::Judging); });
}

CurlCall::~CurlCall() {
    mProcess.endNow(0);
}

void CurlCall::startCommand(const QString& command, int longestMs) {
    mLongestMs = longestMs;
    enter(State::Running);
    mProcess.startCommand(command);
}

void CurlCall::start(const QStringList& arguments, int longestMs) {
    mLongestMs = longestMs;
    enter(State::Running);
    mProcess.start(QStringLiteral("curl"), arguments);
}

void CurlCall::enter(State state) {
    mState = state;
    switch (state) {
        case State::Idle:
            mLimit.stop();
            mOutcome.how = CurlOutcome::How::NotStarted;
            emit failed();
            break;
        case State::Running:
            mOutcome = {};
            mLimit.start(mLongestMs, this, &CurlCall::cutShort);
            break;
        case State::Judging:
            mLimit.stop();
            heedEnd();
            judge();
            break;
        case State::Ended:
            emit ended();
            break;
    }
}

void CurlCall::heedError(QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart)
        enter(State::Idle);
    else if (mOutcome.how != CurlOutcome::How::TimedOut)
        emit failed();
}

void CurlCall::cutShort() {
    mOutcome.how = CurlOutcome::How::TimedOut;
    mOutcome.defect = QStringLiteral("curl was not done after %1 s").arg(double(mLongestMs) / 1000.0);
    mProcess.end(kGraceMs);
}

void CurlCall::heedEnd() {
    mOutcome.text = mProcess.output().text();
    if (mOutcome.how == CurlOutcome::How::TimedOut)
        return;
    if (mProcess.exitStatus() == QProcess::CrashExit) {
        mOutcome.how = CurlOutcome::How::Crashed;
        mOutcome.defect = QStringLiteral("curl crashed");
    } else if (const char* name = partialTransferName(mProcess.exitCode())) {
        mOutcome.how = CurlOutcome::How::Partial;
        mOutcome.defect = QStringLiteral("curl ended with %1 %2").arg(mProcess.exitCode()).arg(QLatin1String(name));
    }
}

void CurlCall::judge() {
    const auto read = [bytes = mProcess.output().bytes(), wanted = mWanted] {
        return ServerAnswer::read(bytes, wanted);
    };
    if (mProcess.output().bytes().size() <= ChildOutput::kMostShown)
        settle(read());
    else
        mSide.run(read, [this](const ServerAnswer& answer) { settle(answer); });
}

void CurlCall::settle(const ServerAnswer& answer) {
    mOutcome.answer = answer;
    if (mOutcome.how == CurlOutcome::How::Whole && !answer.headersEnd) {
        mOutcome.how = CurlOutcome::How::Partial;
        mOutcome.defect = QStringLiteral("the answer's headers do not end");
    }
    enter(State::Ended);
}
