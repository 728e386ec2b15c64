#pragma once

#include <QHash>
#include <QRawFont>
#include <QSet>
#include <QString>
#include <QTextLayout>

namespace Pallisande {

// Gathers the characters that would be drawn as empty boxes, or not at all, because no font has an outline
// for them (a PDF for archives can’t hold coloured or bitmap glyphs). It looks at the glyphs chosen for a
// text, so it knows what will be drawn and doesn’t guess it from lists of fonts.
class GlyphCheck {
public:
    void inspect(const QTextLayout& text);

    // Each once, in the order of their first appearance; only the first of very many.
    const QString& missing() const { return m_missing; }

private:
    struct Face {
        enum class Outlines { none, some, all };
        Outlines outlines = Outlines::none;
        QSet<quint32> drawable; // Where some glyphs have one: those that were seen to.
    };

    Face& faceOf(const QRawFont& font);
    bool draws(const QRawFont& font, const QString& character);

    QHash<QRawFont, Face> m_faces;
    QString m_missing;
};

} // namespace Pallisande
