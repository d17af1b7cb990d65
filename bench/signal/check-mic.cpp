// Stands where a vehicle has its microphone check. The recorder shows what this program prints, and only standard
// output, so whatever there is to say goes there, the verdict or the reason why there is none in the first line.

#include "bench/signal/CommandLine.h"
#include "bench/signal/MicrophoneCheck.h"
#include "bench/signal/WavReader.h"

#include <cstdio>
#include <optional>
#include <span>
#include <string>

namespace {

constexpr char kHelp[] =
    R"(Usage: check-mic WAV RMS_THRESHOLD DB_THRESHOLD

Judges every microphone (channel) of a recording. Make some steady noise near all microphones while recording.

  WAV            recording of at least 0.1 s
  RMS_THRESHOLD  least RMS of a microphone that hears, full scale 1.0, for example 0.001
  DB_THRESHOLD   greatest distance in dB from the median level of the live microphones, for example 1.5

The first line is the verdict, then follows a line for each microphone: the first of these words that applies, its
level (0 dBFS is an RMS of 1.0, DC removed), its distance from the median, and what to do.

  DEAD       RMS below the threshold, and no DC that reaches it
  CLIPPED    three or more samples in a row at full scale
  STUCK      DC without sound, or one value for more than 100 ms
  DUPLICATE  the same samples as an earlier microphone
  DROPOUT    zeros for more than 10 ms
  LEVEL      further from the median than the threshold
  OK

Status: 0 pass, 1 fail, 2 no verdict (no WAV file, too short, unusable arguments).
)";

int noVerdict(const std::string& reason) {
    std::printf("MIC CHECK: ERROR (%s)\n", reason.c_str());
    return 2;
}

}  // namespace

int main(int argc, char* argv[]) {
    const std::span arguments(argv + 1, argv + argc);
    if (const std::optional<int> status = answerStandardOptions(arguments, "check-mic", NVH_VERSION, kHelp)) {
        return *status;
    }
    if (arguments.size() != 3) {
        return noVerdict("wants WAV RMS_THRESHOLD DB_THRESHOLD, got " + std::to_string(arguments.size()) +
                         " arguments; see check-mic --help");
    }

    const std::optional<double> rms = parseNumber(arguments[1]);
    if (!rms || *rms < 0) {
        return noVerdict("the RMS threshold '" + std::string(arguments[1]) + "' is no number from 0 up");
    }
    const std::optional<double> difference = parseNumber(arguments[2]);
    if (!difference || *difference < 0) {
        return noVerdict("the dB threshold '" + std::string(arguments[2]) + "' is no number from 0 up");
    }

    std::string error;
    std::optional<WavReader> wav = WavReader::open(arguments[0], error);
    if (!wav) {
        return noVerdict(error);
    }
    const MicrophoneCheck::Limits limits{*rms, *difference, arguments[1], arguments[2]};
    const std::optional<MicrophoneCheck> check = MicrophoneCheck::run(*wav, limits, error);
    if (!check) {
        return noVerdict(std::string(arguments[0]) + ": " + error);
    }
    std::fputs(check->report().c_str(), stdout);
    return check->passed() ? 0 : 1;
}
