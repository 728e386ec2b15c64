#pragma once

#include "Pallisande/Model/AppModel.h"

#include <QWidget>

class QPushButton;

namespace Pallisande {

class Label;

// One line under the toolbar that stays for as long as it is true.
class Strip : public QWidget {
    Q_OBJECT

public:
    enum class Kind { sample, notFound, readOnly };

    Strip(Kind kind, QWidget* parent);

    void setSentence(const QString& sentence);
    QPushButton* addButton(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void dress();

    Kind m_kind;
    QWidget* m_icon;
    Label* m_sentence;
};

// The strips of the window: sample data, a folder that wasn't found, a library that can't be written to.
class Strips : public QWidget {
    Q_OBJECT

public:
    Strips(AppModel& model, bool isSample, QWidget* parent);

signals:
    void ownLibraryWanted(); // In the place of sample data.

private:
    void refresh();

    AppModel& m_model;
    Strip *m_sample, *m_notFound, *m_readOnly;
    QPushButton* m_openAgain;
};

} // namespace Pallisande
