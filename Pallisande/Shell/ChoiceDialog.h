#pragma once

#include <QString>

#include <functional>
#include <vector>

class QDialog;
class QWidget;

namespace Pallisande {

// One question with a button for each answer, the first of which is the likeliest. Nothing is done at Cancel.
struct Choice {
    QString text;
    std::function<void()> act;
};
QDialog* askToChoose(const QString& question, const std::vector<Choice>& choices, QWidget* window);

} // namespace Pallisande
