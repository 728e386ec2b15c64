#include "Printing/PdfDocument.h"

#include "Printing/PagePainter.h"
#include "Printing/PrintingError.h"
#include "Printing/TextNames.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>

namespace Pallisande {

namespace {

constexpr int dotsPerInch = 1200;

// The title also stands in an XML packet, which takes no controls and nothing that isn’t a character.
QString metadataText(const std::string& text)
{
    QString result;
    for (const QChar character : QString::fromStdString(text).simplified()) {
        const bool allowed = character.category() != QChar::Other_Control && character < QChar(0xFFFE);
        if (allowed)
            result += character;
    }
    return result;
}

} // namespace

std::string makePdf(const Tamberlin::PrintedDocument& document)
{
    const DocumentLayout layout = layOut(document);
    if (!layout.missingCharacters.empty())
        throw PrintingError::missingCharacters(layout.missingCharacters);

    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setPdfVersion(QPagedPaintDevice::PdfVersion_A1b);
    writer.setResolution(dotsPerInch);
    writer.setTitle(metadataText(document.metadataTitle));
    writer.setCreator("Pallisande");
    const bool isLetter = document.paper == Tamberlin::Paper::letter;
    writer.setPageSize(QPageSize(isLetter ? QPageSize::Letter : QPageSize::A4));
    writer.setPageMargins({});

    QPainter painter;
    bool drawn = painter.begin(&writer);
    for (std::size_t page = 0; drawn && page < layout.pages.size(); ++page) {
        if (page > 0)
            drawn = writer.newPage();
        const double scale = dotsPerInch / points(72);
        drawPage(layout, page, painter, { 0, 0, layout.sheet.width * scale, layout.sheet.height * scale });
    }
    drawn = painter.end() && drawn;
    if (!drawn || !bytes.startsWith("%PDF"))
        throw PrintingError::notMade();
    auto pdf = bytes.toStdString();
    nameCharactersAsWritten(pdf, layout);
    return pdf;
}

} // namespace Pallisande
