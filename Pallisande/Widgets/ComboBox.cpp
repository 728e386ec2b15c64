#include "Pallisande/Widgets/ComboBox.h"

#include "Pallisande/Widgets/Popup.h"
#include "Pallisande/Widgets/Theme.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QSortFilterProxyModel>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr int mostRowsShown = 12, widest = 320;

class WordFilter : public QSortFilterProxyModel {
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void setWords(const QString& text)
    {
        m_words = searchForm(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        invalidateFilter();
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override
    {
        const auto index = sourceModel()->index(row, 0, parent);
        const auto text = searchForm(index.data().toString());
        return sourceModel()->flags(index) & Qt::ItemIsEnabled
            && std::all_of(
                m_words.begin(), m_words.end(), [&](const auto& word) { return text.contains(word); });
    }

private:
    QStringList m_words;
};

// Up, Down, Return and the page keys belong to the list while the caret stays in the search field.
class SearchField : public QLineEdit {
public:
    SearchField(QListView* list, QWidget* parent)
        : QLineEdit(parent)
        , m_list(list)
    {
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        switch (event->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            QCoreApplication::sendEvent(m_list, event);
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (m_list->currentIndex().isValid())
                emit m_list->clicked(m_list->currentIndex());
            return;
        case Qt::Key_Escape:
            window()->close();
            return;
        default:
            QLineEdit::keyPressEvent(event);
        }
    }

private:
    QListView* m_list;
};

} // namespace

QString searchForm(const QString& text)
{
    QString form;
    for (const auto character : text.normalized(QString::NormalizationForm_KD).toCaseFolded())
        if (character.category() != QChar::Mark_NonSpacing)
            form += character;
    return form;
}

ComboBox::ComboBox(QWidget* parent)
    : QComboBox(parent)
{
    setFocusPolicy(Qt::StrongFocus); // Not by the wheel.
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
}

void ComboBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

void ComboBox::keyPressEvent(QKeyEvent* event)
{
    const bool isLetter = !event->text().isEmpty() && event->text().front().isLetterOrNumber()
        && !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (m_isSearchable && isLetter)
        return showSearch(event->text());
    QComboBox::keyPressEvent(event);
}

void ComboBox::showPopup()
{
    if (m_isSearchable)
        showSearch({});
    else
        QComboBox::showPopup();
}

QSize ComboBox::sizeHint() const
{
    auto size = QComboBox::sizeHint();
    // Qt measures the ink of the texts, which are drawn with a little room at both ends.
    size.setWidth(std::min(size.width() + 2, Theme::of(this).scaled(widest)));
    return size;
}

QSize ComboBox::minimumSizeHint() const { return { std::min(sizeHint().width(), 80), sizeHint().height() }; }

void ComboBox::showSearch(const QString& typed)
{
    auto* popup = new Popup(this);
    auto* list = new QListView(popup);
    auto* search = new SearchField(list, popup);
    auto* filter = new WordFilter(popup);
    filter->setSourceModel(model());
    list->setModel(filter);
    list->setFrameShape(QFrame::NoFrame);
    list->setUniformItemSizes(true);
    list->setMouseTracking(true);
    list->setFocusPolicy(Qt::NoFocus);
    list->setAccessibleName(accessibleName());
    search->setAccessibleName(QStringLiteral("Search"));
    search->setPlaceholderText(QStringLiteral("Search"));
    popup->content()->addWidget(search);
    popup->content()->addWidget(list);

    const auto findFirst = [list, filter](const QModelIndex& wanted) {
        const auto found = wanted.isValid() ? wanted : filter->index(0, 0);
        list->setCurrentIndex(found);
        list->scrollTo(found);
    };
    connect(search, &QLineEdit::textChanged, popup, [filter, findFirst](const QString& text) {
        filter->setWords(text);
        findFirst({});
    });
    connect(list, &QListView::clicked, this, [this, popup, filter](const QModelIndex& index) {
        const int row = filter->mapToSource(index).row();
        popup->close();
        setFocus(Qt::OtherFocusReason);
        setCurrentIndex(row);
        emit activated(row);
    });
    const int rows = std::min(count(), mostRowsShown);
    list->setFixedHeight(std::max(list->sizeHintForRow(0), fontMetrics().height()) * rows + Space::tiny);
    list->setMinimumWidth(std::max(width() - 2 * Space::small, Theme::of(this).scaled(240)));
    findFirst(filter->mapFromSource(model()->index(currentIndex(), modelColumn())));
    popup->showBelow(this);
    search->setFocus(Qt::PopupFocusReason);
    search->setText(typed);
}

} // namespace Pallisande
