#pragma once

#include <QImage>
#include <QWidget>

#include <filesystem>
#include <optional>
#include <string>

namespace Pallisande {

// The place of the logo, as it is printed: on white. Takes a picture that is dropped on it.
class LogoWell : public QWidget {
    Q_OBJECT

public:
    explicit LogoWell(QWidget* parent);

    // A picture in Base64. Gives what is wrong with it; empty: nothing.
    QString setLogo(const std::optional<std::string>& logo);

    QSize sizeHint() const override;

signals:
    void dropped(const std::filesystem::path& file);

protected:
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    std::optional<std::string> m_logo;
    QString m_problem;
    QImage m_image;
    bool m_isMarked = false; // Something hovers over it that it would take.
};

} // namespace Pallisande
