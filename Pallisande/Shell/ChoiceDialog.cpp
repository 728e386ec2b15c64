#include "Pallisande/Shell/ChoiceDialog.h"

#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"

#include <QDialog>
#include <QVBoxLayout>

#include <utility>

namespace Pallisande {

QDialog* askToChoose(const QString& question, const std::vector<Choice>& choices, QWidget* window)
{
    auto* dialog = new QDialog(window);
    dialog->setObjectName(QStringLiteral("choice"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setWindowTitle(question);
    auto* box = new QVBoxLayout(dialog);
    box->setContentsMargins(Space::group, Space::group, Space::group, Space::group);
    box->setSpacing(Space::small);
    auto* sentence = makeSentence(question, dialog, TextStyle::heading);
    sentence->setMinimumWidth(Theme::of(window).scaled(340));
    box->addWidget(sentence);
    box->addSpacing(Space::small);
    bool isFirst = true;
    for (const auto& [text, act] : choices) {
        auto shown = text;
        shown.replace(QLatin1Char('&'), QLatin1String("&&")); // Of a title: no mnemonic.
        auto* button = makeButton(shown, isFirst ? ButtonKind::primary : ButtonKind::plain, dialog);
        button->setDefault(std::exchange(isFirst, false));
        box->addWidget(button);
        QObject::connect(button, &QPushButton::clicked, dialog, [dialog, act = act] {
            dialog->accept();
            act();
        });
    }
    auto* cancel = makeButton(QStringLiteral("Cancel"), ButtonKind::quiet, dialog);
    QObject::connect(cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    box->addWidget(cancel);
    dialog->open();
    return dialog;
}

} // namespace Pallisande
