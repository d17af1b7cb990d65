#include "host/drive/DriveFile.h"

#include "host/drive/StepReader.h"
#include "host/trace/TraceFile.h"
#include "host/trace/TracePlayer.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <array>

namespace {

DriveAction readSet(StepReader& reader, const QDir&) {
    return SetStep{reader.dataValues("set")};
}

DriveAction readTrace(StepReader& reader, const QDir& directory) {
    if (reader.isNull("trace"))
        return TraceStep{};
    const QString path = reader.text("trace");
    const double from = reader.seconds("from", 0.0);
    if (!reader.ok())
        return TraceStep{};
    QString reason;
    std::optional<TraceFile> trace = TraceFile::read(directory.filePath(path), &reason);
    if (!trace) {
        reader.refuse(reason);
        return TraceStep{};
    }
    if (!TracePlayer::fits(*trace, &reason))
        reader.refuse(reason);
    if (from > trace->duration())
        reader.refuse(QStringLiteral("from: %1 ends after %2 s").arg(path).arg(trace->duration()));
    return TraceStep{std::make_shared<const TraceFile>(std::move(*trace)), from};
}

DriveAction readTouch(StepReader& reader, const QDir&) {
    return TouchStep{reader.text("touch"), reader.seconds("hold", 0.0)};
}

DriveAction readSlide(StepReader& reader, const QDir&) {
    return SlideStep{reader.text("slide"), reader.item("to")};
}

DriveAction readPick(StepReader& reader, const QDir&) {
    return PickStep{reader.text("pick"), reader.text("choice")};
}

DriveAction readMark(StepReader& reader, const QDir&) {
    return MarkStep{reader.text("mark"), reader.wholeNumber("row"), reader.item("to")};
}

DriveAction readWait(StepReader& reader, const QDir&) {
    return WaitStep{reader.seconds("wait", 0.0)};
}

DriveAction readExpect(StepReader& reader, const QDir&) {
    ExpectStep step;
    step.view = reader.text("expect");
    step.there = reader.truth("there").value_or(true);
    step.text = reader.anyText("text");
    step.colour = reader.anyText("colour");
    step.visible = reader.truth("visible");
    step.enabled = reader.truth("enabled");
    step.within = reader.seconds("within", 0.0);
    if (const auto pattern = reader.anyText("matches")) {
        step.matches.emplace(*pattern);
        if (!step.matches->isValid())
            reader.refuse(QStringLiteral("matches: ") + step.matches->errorString());
        if (step.text)
            reader.refuse(QStringLiteral("matches stands instead of text, not beside it"));
    }
    if (!step.there && (step.text || step.matches || step.colour || step.visible || step.enabled))
        reader.refuse(QStringLiteral("a view that is not there has no other condition"));
    return step;
}

DriveAction readExpectLog(StepReader& reader, const QDir&) {
    return ExpectLogStep{reader.text("expectLog"), reader.anyText("level"), reader.seconds("within", 0.0)};
}

DriveAction readExpectValue(StepReader& reader, const QDir&) {
    return ExpectValueStep{reader.text("expectValue"), reader.valueOrNull("is"), reader.seconds("within", 0.0)};
}

DriveAction readConfig(StepReader& reader, const QDir&) {
    return ConfigStep{reader.settings("config")};
}

DriveAction readGrab(StepReader& reader, const QDir&) {
    return GrabStep{reader.text("grab")};
}

DriveAction readTree(StepReader& reader, const QDir&) {
    return TreeStep{reader.text("tree")};
}

struct Kind {
    const char* name;
    DriveAction (*read)(StepReader& reader, const QDir& directory);
};

constexpr std::array kKinds = {
    Kind{"set", readSet},
    Kind{"trace", readTrace},
    Kind{"touch", readTouch},
    Kind{"slide", readSlide},
    Kind{"pick", readPick},
    Kind{"mark", readMark},
    Kind{"wait", readWait},
    Kind{"expect", readExpect},
    Kind{"expectLog", readExpectLog},
    Kind{"config", readConfig},
    Kind{"expectValue", readExpectValue},
    Kind{"grab", readGrab},
    Kind{"tree", readTree},
};

const Kind* kindOf(StepReader& reader) {
    const Kind* found = nullptr;
    for (const Kind& kind : kKinds) {
        if (!reader.has(kind.name))
            continue;
        if (found)
            reader.refuse(QStringLiteral("\"%1\" and \"%2\" are two steps")
                              .arg(QLatin1String(found->name), QLatin1String(kind.name)));
        found = &kind;
    }
    if (!found)
        reader.refuse(QStringLiteral("there is no such step"));
    return found;
}

std::optional<DriveStep> readStep(const QByteArray& line, const QDir& directory, QString& fault) {
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(line, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        fault = QStringLiteral("no JSON: %1 at column %2").arg(parseError.errorString()).arg(parseError.offset + 1);
        return std::nullopt;
    }
    if (!document.isObject()) {
        fault = QStringLiteral("a step is a JSON object");
        return std::nullopt;
    }
    StepReader reader(line);
    DriveStep step;
    step.source = line;
    step.at = reader.seconds("at", 0.0);
    if (const Kind* kind = kindOf(reader); kind && reader.ok()) {
        step.action = kind->read(reader, directory);
        reader.refuseUnknown(QString::fromLatin1(kind->name));
    }
    fault = reader.fault();
    if (!reader.ok())
        return std::nullopt;
    return step;
}

}  // namespace

std::optional<DriveFile> DriveFile::read(const QString& path, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    DriveFile drive;
    drive.path = path;
    const QDir directory = QFileInfo(path).absoluteDir();
    for (int number = 1; !file.atEnd(); ++number) {
        const QByteArray line = file.readLine().trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        QString fault;
        std::optional<DriveStep> step = readStep(line, directory, fault);
        if (!step) {
            *error = QStringLiteral("%1:%2: %3").arg(path).arg(number).arg(fault);
            return std::nullopt;
        }
        step->line = number;
        drive.steps.push_back(std::move(*step));
    }
    return drive;
}
