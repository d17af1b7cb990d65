#pragma once

#include <QHash>
#include <QTimer>
#include <QWidget>

class DataValue;
class QLabel;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

// All data values that have no control of their own, and a line to set any value by its name: NAME=VALUE as on the
// command line. A value that is made later joins the list. UI thread.
class OtherValues : public QWidget {
    Q_OBJECT
public:
    // The names of the values that are shown elsewhere.
    explicit OtherValues(const QStringList& elsewhere);

private:
    void lookForNewValues();
    void show(DataValue* value);
    void offer(QTreeWidgetItem* item);
    void setAsTyped();

    QStringList mElsewhere;
    QHash<QString, QTreeWidgetItem*> mItems;
    QTreeWidget* mList;
    QLineEdit* mLine;
    QLabel* mFault;
    QTimer mTimer;
};
