// SPDX-License-Identifier: MIT
#include "capture_prefs_ui/status_line.h"

#include "capture_prefs_ui/leading_text.h"
#include "capture_prefs_ui/shortened_label.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace havrel {

StatusLine::StatusLine(QWidget* parent)
    : QWidget(parent)
    , m_label(new ShortenedLabel(this))
    , m_reloadButton(new QPushButton(tr("&Reload"), this))
    , m_saveButton(new QPushButton(tr("Sa&ve Now"), this))
{
    m_label->setObjectName(QStringLiteral("statusLabel"));
    m_label->setElideMode(Qt::ElideRight);
    m_label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_reloadButton->setObjectName(QStringLiteral("reloadButton"));
    m_reloadButton->setAutoDefault(false);
    m_reloadButton->setToolTip(tr("Shows what is stored now, and forgets what is not saved"));
    m_saveButton->setObjectName(QStringLiteral("saveNowButton"));
    m_saveButton->setAutoDefault(false);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(m_label, 1);
    row->addWidget(m_reloadButton);
    row->addWidget(m_saveButton);
    connect(m_reloadButton, &QPushButton::clicked, this, &StatusLine::reload);
    connect(m_saveButton, &QPushButton::clicked, this, &StatusLine::saveNow);
    offerReloading(false);
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

void StatusLine::showSavingIn(int seconds, bool overOthers)
{
    const QString when = seconds == 1 ? tr("Saving in 1 second") : tr("Saving in %1 seconds").arg(seconds);
    show(overOthers ? tr("%1, over changes made elsewhere").arg(when) : when, true);
}

void StatusLine::showNotSaved(const QString& reason)
{
    show(tr("Not saved: %1").arg(reason), true);
}

void StatusLine::showNote(const QString& text)
{
    show(text, false);
}

/// The line keeps its height, and the buttons the trailing edge, whichever of them is there.
void StatusLine::offerReloading(bool isOffered)
{
    m_reloadButton->setVisible(isOffered);
    QSizePolicy policy = m_saveButton->sizePolicy();
    policy.setRetainSizeWhenHidden(!isOffered);
    m_saveButton->setSizePolicy(policy);
}

void StatusLine::show(const QString& text, bool canSave)
{
    alignAtLeadingEdge(*m_label);
    m_label->setText(text);
    m_saveButton->setVisible(canSave);
}

} // namespace havrel
