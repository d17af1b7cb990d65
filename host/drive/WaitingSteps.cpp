#include "host/drive/WaitingSteps.h"

#include "host/drive/LogWatch.h"
#include "host/screen/Screen.h"
#include "host/screen/ViewTree.h"
#include "host/values/ValueSetter.h"

#include <cmath>

namespace {

constexpr int kLookAgainMs = 10;

QString quoted(const QString& text) {
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString quoted(const std::optional<QString>& text, const char* otherwise) {
    return text ? quoted(*text) : QString::fromLatin1(otherwise);
}

QString truthText(bool on) {
    return on ? QStringLiteral("true") : QStringLiteral("false");
}

bool textHolds(const ExpectStep& step, const std::optional<QString>& text) {
    if (step.text)
        return text == step.text;
    return !step.matches || (text && step.matches->match(*text).hasMatch());
}

// What the view shows of that for which conditions are given and do not hold.
QString differences(const ExpectStep& step, const DisplayView& view) {
    QStringList seen;
    const auto text = ViewTree::textOf(view);
    if (!textHolds(step, text))
        seen << QStringLiteral("text is %1").arg(quoted(text, "none"));
    if (const auto colour = ViewTree::colourOf(view); step.colour && colour != step.colour)
        seen << QStringLiteral("colour is %1").arg(quoted(colour, "none"));
    if (step.visible && view.isVisible() != *step.visible)
        seen << QStringLiteral("visible is %1").arg(truthText(view.isVisible()));
    if (step.enabled && view.isEnabled() != *step.enabled)
        seen << QStringLiteral("enabled is %1").arg(truthText(view.isEnabled()));
    return seen.join(QStringLiteral(", "));
}

// Numbers compare as numbers whatever their type; an invalid variant stands for an invalid value.
bool holds(const QVariant& wanted, const DataValue& value) {
    if (!wanted.isValid() || !value.isValid())
        return wanted.isValid() == value.isValid();
    if (const auto* truth = qobject_cast<const BoolDataValue*>(&value))
        return wanted.userType() == QMetaType::Bool && wanted.toBool() == truth->value();
    if (wanted.userType() == QMetaType::Bool)
        return false;
    const auto* whole = qobject_cast<const IntDataValue*>(&value);
    return wanted.toDouble() == (whole ? whole->value() : static_cast<const RealDataValue&>(value).value());
}

}  // namespace

WaitRun::WaitRun(const WaitStep& step) : mSeconds(step.seconds) {
    mTimer.setSingleShot(true);
    mTimer.setTimerType(Qt::PreciseTimer);
    connect(&mTimer, &QTimer::timeout, this, &WaitRun::held);
}

void WaitRun::start() {
    mTimer.start(int(std::ceil(mSeconds * 1000.0)));
}

ExpectRun::ExpectRun(Look look, double withinSeconds) : mLook(std::move(look)), mWithinSeconds(withinSeconds) {
    mTimer.setInterval(kLookAgainMs);
    connect(&mTimer, &QTimer::timeout, this, &ExpectRun::look);
}

void ExpectRun::start() {
    mClock.start();
    mTimer.start();
    look();
}

void ExpectRun::look() {
    // The clock first: what holds at the last look has come in time.
    const bool over = double(mClock.elapsed()) >= mWithinSeconds * 1000.0;
    const QString seen = mLook();
    if (!seen.isEmpty() && !over)
        return;
    mTimer.stop();
    if (seen.isEmpty())
        emit held();
    else
        emit failed(seen);
}

ExpectRun::Look ExpectSteps::view(const ExpectStep& step, Screen& screen) {
    return [&step, &screen]() -> QString {
        const DisplayView* view = ViewTree::find(screen, step.view);
        if (!view)
            return step.there ? QStringLiteral("there is no view %1").arg(step.view) : QString();
        if (!step.there)
            return QStringLiteral("%1 is there").arg(step.view);
        const QString seen = differences(step, *view);
        return seen.isEmpty() ? seen : QStringLiteral("%1: %2").arg(step.view, seen);
    };
}

ExpectRun::Look ExpectSteps::log(const ExpectLogStep& step, LogWatch& log) {
    return [&step, &log] { return log.find(step.text, step.level) ? QString() : log.seen(); };
}

ExpectRun::Look ExpectSteps::value(const ExpectValueStep& step) {
    return [&step]() -> QString {
        const DataValue* value = DataValueManager::instance().find(step.name);
        if (!value)
            return QStringLiteral("there is no data value %1").arg(step.name);
        const DataValue::StateLocker locker(value);
        return holds(step.is, *value) ? QString() : QStringLiteral("%1 is %2").arg(step.name, value->toString());
    };
}
