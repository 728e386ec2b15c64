#pragma once

#include "Pallisande/Preview/PdfRenderer.h"
#include "Pallisande/Settings/SettingsWindow.h"
#include "Pallisande/Widgets/SheetDialog.h"
#include "PallisandeKit/Samples/SampleLibrary.h"
#include "PallisandeKit/Samples/SampleReport.h"
#include "Tests/Pallisande/Events.h"
#include "Tests/Pallisande/WindowWorld.h"

#include <functional>

namespace Test {

// The whole window on a copy of the sample library, which has jobs and invoices in every state.
struct SampleWindow : WindowWorld {
    SampleWindow()
    {
        fs::remove_all(library);
        fs::copy(samples(), library, fs::copy_options::recursive);
        open();
    }

    Base::Uuid job(std::string_view title) const
    {
        for (const auto& one : model->library().jobs) {
            if (one.title == title)
                return one.id;
        }
        throw std::runtime_error("no such job");
    }
    Base::Uuid invoice(Pallisande::InvoiceStatus status) const
    {
        for (const auto& one : model->library().invoices) {
            if (Pallisande::Ledger::status(model->library(), one, model->moment()) == status)
                return one.id;
        }
        throw std::runtime_error("no such invoice");
    }
    void showJob(std::string_view title) { model->show(Pallisande::AppSection::jobs, job(title)); }
    void showInvoice(Pallisande::InvoiceStatus status)
    {
        model->show(Pallisande::AppSection::invoices, invoice(status));
    }
    fs::path file(const char* name, const std::string& text)
    {
        writeFile(root / name, text);
        return root / name;
    }
    void import(const char* name, const std::string& report)
    {
        showJob("Annual report, part 2");
        model->imports().read(job("Annual report, part 2"), { file(name, report) });
    }

private:
    static const fs::path& samples()
    {
        static const TemporaryFolder root;
        static const fs::path folder = root / "Library";
        static Pallisande::PdfRenderer renderer;
        static const bool isMade = !Pallisande::makeSampleFolder(folder,
            { .now = [] { return Test::moment().now; }, .calendar = Test::calendar(), .renderer = &renderer })
                                        .empty();
        (void)isMade;
        return folder;
    }
};

// A page, a sheet or a window, and how it comes to be on show.
struct Place {
    const char* name;
    std::function<void(SampleWindow&)> show;
    const char* subject = ""; // By its name: a dialog; the sheet of the window; or the whole window.

    QWidget* open(SampleWindow& world) const
    {
        show(world);
        WindowWorld::settleEvents();
        if (*subject == '\0')
            return world.window.get();
        return std::string_view(subject) == "sheet" ? world.window->sheet() : world.find(subject);
    }
};

inline std::vector<Place> places()
{
    using namespace Pallisande;
    using W = SampleWindow;
    const std::vector<SampleFile> files { { "Terms.docx", { 0, 60, 42, 118, 35, 22, 0, 41, 702 }, 1 },
        { "Annex.docx", { 0, 0, 18, 0, 0, 12, 9, 0, 240 } } };
    const auto shows = [](auto what) { return [what](W& world) { world.showInvoice(what); }; };
    const auto settings = [](int page) {
        return [page](W& world) {
            world.window->showSettings(page);
            world.window->findChild<SettingsWindow*>()->setObjectName("settings");
        };
    };
    const auto count = [](W& world, DocumentCounts::Purpose purpose, std::optional<Base::Uuid> job) {
        world.model->counts().count(
            { world.file("a.txt", "One two three. Four. One two three."),
                world.file("b.txt", "Six seven eight."), world.file("c.docx", "not a package") },
            purpose, job);
    };
    return {
        { "deadlines",
            [](W& world) {
                world.model->select(AppSection::deadlines, world.job("Annual report, part 2"));
                world.action(Command::inspector)->trigger();
            } },
        { "job with everything", [](W& world) { world.showJob("Annual report, part 2"); } },
        { "job with problems", [](W& world) { world.showJob("Warranty terms"); } },
        { "job by target words", [](W& world) { world.showJob("Safety data sheet"); } },
        { "job on an invoice", [](W& world) { world.showJob("Spring catalogue"); } },
        { "job search without hits",
            [](W& world) {
                world.model->setSection(AppSection::jobs);
                world.model->setSearch(AppSection::jobs, "zzz");
            } },
        { "client",
            [](W& world) {
                world.model->show(AppSection::clients, world.model->library().clients.front().id);
            } },
        { "invoice draft", shows(InvoiceStatus::draft) },
        { "invoice open", shows(InvoiceStatus::open) },
        { "invoice part paid", shows(InvoiceStatus::partlyPaid) },
        { "invoice overdue", shows(InvoiceStatus::overdue) },
        { "invoice credited", shows(InvoiceStatus::credited) },
        { "credit note", shows(InvoiceStatus::creditNote) },
        { "new job", [](W& world) { world.model->jobs().openNewJob("Leaflet"); }, "sheet" },
        { "typed counts",
            [](W& world) {
                world.model->openSheet(ManualSheet { world.job("Exhibition labels"), {} });
            },
            "sheet" },
        { "review", [=](W& world) { world.import("Terms.csv", sampleMemoQReport(files)); }, "sheet" },
        { "mapping", [=](W& world) { world.import("table.csv", sampleTable(files)); }, "sheet" },
        { "refused report", [](W& world) { world.import("report.html", "<html></html>"); }, "sheet" },
        { "make a job", [=](W& world) { count(world, DocumentCounts::Purpose::newJob, {}); }, "sheet" },
        { "attach a count",
            [=](W& world) {
                count(world, DocumentCounts::Purpose::attach, world.job("Annual report, part 2"));
            },
            "sheet" },
        { "issue",
            [](W& world) { world.model->invoices().openIssueSheet(world.invoice(InvoiceStatus::draft)); },
            "sheet" },
        { "payment",
            [](W& world) {
                world.model->openSheet(PaymentSheet { world.invoice(InvoiceStatus::partlyPaid), {} });
            },
            "sheet" },
        { "typed rate",
            [](W& world) { world.model->invoices().addExchangeRate(world.invoice(InvoiceStatus::open)); },
            "sheet" },
        { "paid in full",
            [](W& world) {
                world.showInvoice(InvoiceStatus::overdue);
                WindowWorld::settleEvents();
                world.action(Command::payInFull)->trigger();
            },
            "payInFullSheet" },
        { "settings of the business", settings(0), "settings" },
        { "settings of invoices", settings(1), "settings" },
        { "settings of the library", settings(2), "settings" },
        { "shortcuts", [](W& world) { world.action(Command::keyboardShortcuts)->trigger(); }, "shortcuts" },
        { "messages", [](W& world) { world.action(Command::recentMessages)->trigger(); }, "recentMessages" },
        { "about", [](W& world) { world.action(Command::about)->trigger(); }, "about" },
    };
}

} // namespace Test
