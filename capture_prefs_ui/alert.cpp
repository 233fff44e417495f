// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/alert.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPushButton>

namespace havrel {
namespace {

QMessageBox::Icon iconOf(AlertStyle style)
{
    return style == AlertStyle::Warning ? QMessageBox::Warning : QMessageBox::Information;
}

QMessageBox::ButtonRole roleAt(qsizetype place)
{
    return place == 0 ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
}

/// A message box whose buttons know their places.
class AlertBox final : public QMessageBox
{
public:
    AlertBox(const Alert& alert, QWidget* parent)
        : QMessageBox(iconOf(alert.style), {}, alert.messageText, NoButton, parent)
    {
        setWindowTitle(QStringLiteral("Havrel")); // else it would be the name of the program's file
        setInformativeText(alert.informativeText);
        // Names come from files: nothing in them is markup.
        setTextFormat(Qt::PlainText);
        if (alert.buttons.isEmpty())
            addAt(0, tr("OK"));
        for (qsizetype place = 0; place < alert.buttons.size(); ++place)
            if (const auto& title = alert.buttons[place])
                addAt(place, *title);
    }

    [[nodiscard]] int answer() const
    {
        const auto place = m_buttons.indexOf(clickedButton());
        return kAlertFirstButtonReturn + static_cast<int>(m_places.value(place < 0 ? m_places.size() - 1 : place));
    }

private:
    void addAt(qsizetype place, const QString& title)
    {
        QPushButton* button = addButton(title, roleAt(place));
        if (m_buttons.isEmpty())
            setDefaultButton(button);
        setEscapeButton(button); // the last one that is added
        m_buttons.append(button);
        m_places.append(place);
    }

    QList<QAbstractButton*> m_buttons;
    QList<qsizetype> m_places; // of the buttons, in the list of titles
};

} // namespace

AlertPresenter::~AlertPresenter() = default;

int WidgetAlertPresenter::runModal(const Alert& alert)
{
    AlertBox box(alert, nullptr);
    box.exec();
    return box.answer();
}

void WidgetAlertPresenter::beginSheet(const Alert& alert, QWidget& window, std::function<void(int)> ended)
{
    auto* box = new AlertBox(alert, &window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    QObject::connect(box, &QDialog::finished, box, [box, ended = std::move(ended)] {
        if (ended)
            ended(box->answer());
    });
    box->open();
}

} // namespace havrel
