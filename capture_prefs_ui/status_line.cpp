// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/status_line.h"

#include "capture_prefs_ui/leading_text.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace havrel {

StatusLine::StatusLine(QWidget* parent)
    : QWidget(parent)
    , m_label(new QLabel(this))
    , m_saveButton(new QPushButton(tr("Sa&ve Now"), this))
{
    m_label->setObjectName(QStringLiteral("statusLabel"));
    m_label->setTextFormat(Qt::PlainText); // reasons may hold the names of files
    m_label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_saveButton->setObjectName(QStringLiteral("saveNowButton"));
    m_saveButton->setAutoDefault(false);
    QSizePolicy staysInPlace = m_saveButton->sizePolicy();
    staysInPlace.setRetainSizeWhenHidden(true);
    m_saveButton->setSizePolicy(staysInPlace);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(m_label, 1);
    row->addWidget(m_saveButton);
    connect(m_saveButton, &QPushButton::clicked, this, &StatusLine::saveNow);
    showSaved();
}

QString StatusLine::text() const
{
    return m_label->text();
}

void StatusLine::showSaved()
{
    show(tr("Saved"), false);
}

void StatusLine::showSavingIn(int seconds)
{
    show(seconds == 1 ? tr("Saving in 1 second") : tr("Saving in %1 seconds").arg(seconds), true);
}

void StatusLine::showNotSaved(const QString& reason)
{
    show(tr("Not saved: %1").arg(reason), true);
}

void StatusLine::show(const QString& text, bool canSave)
{
    alignAtLeadingEdge(*m_label);
    m_label->setText(text);
    m_label->setToolTip(text);
    m_saveButton->setVisible(canSave);
}

} // namespace havrel
