#pragma once

#include "Pallisande/Sheets/Sheets.h"
#include "Tests/Pallisande/ModelWorld.h"
#include "Tests/Pallisande/WidgetApplication.h"
#include "Tests/Pallisande/WidgetChecks.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>

namespace Test {

// A window that shows the sheet that the model has open.
class SheetWindow : public QWidget {
public:
    explicit SheetWindow(Pallisande::AppModel& model)
        : m_model(model)
    {
        resize(1200, 780);
        show();
        connect(&model, &Pallisande::AppModel::sheetChanged, this, [this] { follow(); });
        follow();
    }

    Pallisande::SheetDialog* dialog() const { return m_dialog; }
    template <typename Widget> Widget& part(const char* name) const
    {
        auto* found = m_dialog ? m_dialog->findChild<Widget*>(QString::fromUtf8(name)) : nullptr;
        if (!found)
            throw std::runtime_error(std::string("no ") + name);
        return *found;
    }
    std::string text(const char* label) const { return part<QLabel>(label).text().toStdString(); }
    void press(const char* button)
    {
        part<QPushButton>(button).click();
        QApplication::processEvents();
    }
    void choose(const char* box, const QString& choice)
    {
        auto& combo = part<QComboBox>(box);
        const int index = combo.findText(choice);
        ASSERT_GE(index, 0) << choice.toStdString();
        combo.setCurrentIndex(index);
        emit combo.activated(index);
        QApplication::processEvents();
    }
    // Every text that is on show.
    std::string texts() const
    {
        std::string all;
        for (const auto* label : m_dialog->findChildren<QLabel*>()) {
            if (label->isVisibleTo(m_dialog))
                all += label->text().toStdString() + "\n";
        }
        return all;
    }

    // Nothing is cut off or nameless at any size of the text, light and dark.
    void expectReadable()
    {
        for (const int size : { 100, 150, 200 }) {
            themeController().setTextSize(size);
            themeController().setAppearance(
                size == 150 ? Pallisande::Appearance::dark : Pallisande::Appearance::light);
            EXPECT_EQ(lastClippedTexts(*m_dialog), std::vector<std::string>()) << size;
        }
        EXPECT_EQ(namelessWidgets(*m_dialog), std::vector<std::string>());
        themeController().setTextSize(100);
        QApplication::processEvents();
    }

private:
    void follow()
    {
        if (auto* const old = std::exchange(m_dialog, nullptr)) {
            old->done(QDialog::Accepted);
            old->deleteLater();
        }
        if (!m_model.sheet())
            return;
        m_dialog
            = std::visit([&](const auto& kind) { return makeSheet(m_model, kind, this); }, *m_model.sheet());
        m_dialog->openSheet();
        QApplication::processEvents();
    }

    Pallisande::AppModel& m_model;
    Pallisande::SheetDialog* m_dialog = nullptr;
};

} // namespace Test
