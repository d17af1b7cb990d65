#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class QObject;

// The files of a run by their settings: which they are, which of them may be touched, and what is written into two of
// them. UI thread.
namespace RunFiles {

// What a recorder keeps for itself while it has something to lose: the capture, and every file that its runs write.
QStringList keptFiles();

// The text of the file of the test conditions: temperatures, tyre pressures, position.
QString testConditions();

// A name for a package that is not taken yet, nor by an archive that is still being written: two runs in one second are
// two packages.
QString freePackageName(const QString& vin, const QString& trim, bool pass, const QString& tag);

// What became of a capture that nobody had filed.
struct SetAside {
    QString file;   // where it is kept now
    QString error;  // why it lies where it lay; empty if it was moved
};
// Moves such a capture to a rescue folder beside its place, its header repaired. Nothing if there is none; one that
// holds no sound is removed.
std::optional<SetAside> setAsideUnfiledCapture(const QObject* sender);

// What was tested, noted beside the test recording for whoever packs it later; not packed itself.
struct TestNote {
    QString testType;    // its display name
    bool clunk = false;  // with torque reversal
};
// The file tag of a test, "_CLUNK" behind it with torque reversal. A type that is not known gets a row with an empty
// tag.
QString tagOf(const TestNote& test);
// A note that cannot be written is missing later, and no more.
void writeTestNote(const TestNote& note);
// Nothing where there is no note of this user.
std::optional<TestNote> readTestNote();
// The note goes when its recording has gone.
void dropTestNoteWithoutRecording();

}  // namespace RunFiles
