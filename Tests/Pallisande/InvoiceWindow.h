#pragma once

#include "Pallisande/Preview/PagePreview.h"
#include "Pallisande/Screens/Invoices/InvoicesPage.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Sheets/Sheets.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/NumberEdit.h"
#include "Printing/PdfDocument.h"
#include "Printing/PrintingError.h"
#include "Tests/Pallisande/ModelWorld.h"
#include "Tests/Pallisande/WidgetApplication.h"
#include "Tests/Pallisande/WidgetChecks.h"

#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

namespace Test {

// Draws real PDFs.
class PageRenderer final : public Pallisande::DocumentRenderer {
public:
    std::string render(const Tamberlin::PrintedDocument& document) override
    {
        try {
            return Pallisande::makePdf(document);
        } catch (const Pallisande::PrintingError& error) {
            throw Pallisande::RenderError(error.what());
        }
    }
};

// The page of invoices in a window of its own, and the sheets that it opens.
struct InvoiceWindow : World {
    explicit InvoiceWindow(Pallisande::Library holding, QSize size = { 1000, 780 })
    {
        using namespace Pallisande;
        drawing = &pages;
        holding.profile.sender.name = "Ada Writer";
        holding.profile.bankDetails = "DE02 1203 0000 0000 2020 51";
        start(holding);
        model->setSection(AppSection::invoices);
        window = std::make_unique<QWidget>();
        view = std::make_unique<ViewState>(preferences);
        commands = new Commands(*model, window.get());
        page = static_cast<InvoicesPage*>(makeInvoicesPage({ *model, *commands, *view }, window.get()));
        auto* box = new QVBoxLayout(window.get());
        box->setContentsMargins(0, 0, 0, 0);
        auto* bar = new QHBoxLayout;
        for (auto* filter : page->filters()) {
            bar->addWidget(filter);
            filter->show();
        }
        bar->addStretch();
        box->addLayout(bar);
        box->addWidget(page, 1);
        QObject::connect(
            commands, &Commands::asked, page, [this](Command command) { page->carryOut(command); });
        QObject::connect(model.get(), &AppModel::sheetChanged, window.get(), [this] { follow(); });
        window->resize(size);
        window->show();
        QApplication::setActiveWindow(window.get());
        QApplication::processEvents();
    }
    ~InvoiceWindow()
    {
        dialog.reset();
        window.reset();
    }

    void follow()
    {
        using namespace Pallisande;
        const auto& sheet = model->sheet();
        if (sheet == shown)
            return;
        shown = sheet;
        if (dialog)
            dialog.release()->deleteLater();
        if (!sheet)
            return;
        if (const auto* issue = std::get_if<IssueSheet>(&*sheet))
            dialog.reset(makeSheet(*model, *issue, window.get()));
        else if (const auto* payment = std::get_if<PaymentSheet>(&*sheet))
            dialog.reset(makeSheet(*model, *payment, window.get()));
        else if (const auto* rate = std::get_if<TypedRateSheet>(&*sheet))
            dialog.reset(makeSheet(*model, *rate, window.get()));
        if (dialog)
            dialog->openSheet();
        QApplication::processEvents();
    }

    Base::Uuid current() const { return *model->selection(Pallisande::AppSection::invoices); }
    const Pallisande::Invoice& invoice() const { return *model->invoice(current()); }
    void trigger(Pallisande::Command command)
    {
        EXPECT_TRUE(commands->action(command)->isEnabled())
            << commands->action(command)->toolTip().toStdString();
        commands->action(command)->trigger();
        QApplication::processEvents();
    }

    // The n-th visible one of that name, in the sheet if one is open.
    template <typename Widget> Widget* find(const char* name, int place = 0)
    {
        QWidget* in = dialog && dialog->isVisible() ? static_cast<QWidget*>(dialog.get()) : window.get();
        for (auto* widget : in->findChildren<Widget*>(QLatin1String(name))) {
            if (widget->isVisible() && place-- == 0)
                return widget;
        }
        ADD_FAILURE() << "There is no " << name;
        return nullptr;
    }
    void type(const char* name, const char* text, int place = 0)
    {
        auto* field = find<QLineEdit>(name, place);
        if (!field)
            return;
        field->setFocus(Qt::TabFocusReason);
        field->selectAll();
        QTest::keyClicks(field, QString::fromUtf8(text));
        QTest::keyClick(field, Qt::Key_Return);
        QApplication::processEvents();
    }
    // Without Return, which in most sheets is the button, too.
    bool commit(const char* name, const char* text)
    {
        auto* field = find<Pallisande::LineField>(name);
        if (!field)
            return false;
        field->setText(QString::fromUtf8(text));
        return field->commit();
    }
    void click(const char* name, int place = 0)
    {
        if (auto* button = find<QAbstractButton>(name, place))
            QTest::mouseClick(button, Qt::LeftButton);
        QApplication::processEvents();
    }
    std::string text(const char* name, int place = 0)
    {
        auto* label = find<QLabel>(name, place);
        return label ? label->text().toStdString() : "";
    }
    bool shows(const char* name)
    {
        for (auto* widget : window->findChildren<QWidget*>(QLatin1String(name))) {
            if (widget->isVisible())
                return true;
        }
        return false;
    }
    Pallisande::PagePreview* preview() { return window->findChild<Pallisande::PagePreview*>(); }
    // Issues the draft on show through its sheet.
    void issue()
    {
        trigger(Pallisande::Command::issue);
        click("issue");
        EXPECT_TRUE(invoice().isIssued()) << problem();
    }

    PageRenderer pages;
    std::unique_ptr<QWidget> window;
    std::unique_ptr<Pallisande::ViewState> view;
    Pallisande::Commands* commands = nullptr;
    Pallisande::InvoicesPage* page = nullptr;
    std::unique_ptr<Pallisande::SheetDialog> dialog;
    std::optional<Pallisande::Sheet> shown;
};

} // namespace Test
