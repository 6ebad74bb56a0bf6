#include "ui/settings/SettingsForm.h"

#include "notification/KelToastsMessage.h"
#include "style/KelStyleTheme.h"
#include "widget/ChoiceBox.h"
#include "widget/ColorSelectButton.h"
#include "widget/MiniSlider.h"
#include "widget/ToggleSwitch.h"

#include <QApplication>
#include <QButtonGroup>
#include <QEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QVBoxLayout>

#include <algorithm>

namespace kel
{

namespace
{

constexpr int kMargin = 14;
constexpr int kColumnGap = 12;
constexpr int kRowGap = 6;
constexpr int kRowHeight = 26;
constexpr int kHeadingHeight = 32;
constexpr int kControlWidth = 160;

void describe(QWidget *control, const QString &name, const QString &toolTip)
{
    static const QRegularExpression mnemonic(QStringLiteral("\\(&.\\)|&")); // Chinese appends "(&X)"
    control->setAccessibleName(QString(name).remove(mnemonic));
    control->setToolTip(toolTip);
    control->setAccessibleDescription(toolTip);
}

QVector<QAbstractButton *> fillChips(QWidget *box, const QVector<SettingsForm::Choice> &choices, int columns)
{
    auto *const grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    QVector<QAbstractButton *> chips;
    for (const SettingsForm::Choice &choice : choices) {
        auto *const chip = new QPushButton(choice.name, box);
        chip->setCheckable(true);
        chip->setCursor(Qt::PointingHandCursor);
        describe(chip, choice.name, choice.toolTip);
        grid->addWidget(chip, chips.size() / columns, chips.size() % columns);
        chips.append(chip);
    }
    return chips;
}

} // namespace

SettingsForm::SettingsForm(QWidget *panel)
    : QWidget(panel)
    , m_grid(new QGridLayout(this))
{
    m_grid->setColumnStretch(1, 1);
    auto *const layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(this);
    layout->addStretch(1);
    KelStyleTheme::instance()->appleStyleTo(this, {QStringLiteral(":/KelMovie/SettingsForm")});
    updateMetrics();
}

bool SettingsForm::event(QEvent *event)
{
    if (event->type() == QEvent::Show)
        reload();
    if (event->type() == QEvent::Show || event->type() == QEvent::ScreenChangeInternal)
        updateMetrics();
    return QWidget::event(event);
}

void SettingsForm::updateMetrics()
{
    const double scale = KelStyleTheme::scaleOf(this);
    const int margin = qRound(kMargin * scale);
    m_grid->setContentsMargins(margin, qRound(kMargin / 2.0 * scale), margin, margin);
    m_grid->setHorizontalSpacing(qRound(kColumnGap * scale));
    m_grid->setVerticalSpacing(qRound(kRowGap * scale));
    for (int row = 0; row < m_grid->rowCount(); ++row) {
        QLayoutItem *const item = m_grid->itemAtPosition(row, 0);
        const bool isHeading = item && item->widget() && item->widget()->objectName() == QLatin1String("Heading");
        const bool isShown = item && !(item->widget() && item->widget()->isHidden());
        m_grid->setRowMinimumHeight(row, isShown ? qRound((isHeading ? kHeadingHeight : kRowHeight) * scale) : 0);
    }
    m_grid->setColumnMinimumWidth(1, qRound(kControlWidth * scale));
}

void SettingsForm::reload()
{
    m_isLoading = true;
    for (const auto &load : m_loaders)
        load();
    m_isLoading = false;
    updateEnabled();
}

void SettingsForm::warnUnsaved()
{
    if (m_hasWarnedUnsaved)
        return;
    m_hasWarnedUnsaved = true;
    KelToastsMessage::showMessage(this, KelToastsMessage::Warning,
                                  tr("Settings cannot be saved. Changes will be lost when the program exits."));
}

void SettingsForm::addHeading(const QString &text)
{
    auto *const heading = new QLabel(text, this);
    heading->setObjectName(QStringLiteral("Heading"));
    m_grid->addWidget(heading, m_grid->rowCount(), 0, 1, 3, Qt::AlignBottom);
    m_condition = nullptr;
}

void SettingsForm::addRecordingHeading(const QString &text)
{
    m_recordingRow = m_grid->rowCount();
    addHeading(text);
}

void SettingsForm::setRecordingShown(bool shown)
{
    for (int row = m_recordingRow; row < m_grid->rowCount(); ++row) {
        for (int column = 0; column < m_grid->columnCount(); ++column) {
            QLayoutItem *const item = m_grid->itemAtPosition(row, column);
            if (item && item->widget())
                item->widget()->setVisible(shown);
        }
    }
    updateMetrics();
}

void SettingsForm::addWidget(QWidget *widget)
{
    m_grid->addWidget(widget, m_grid->rowCount(), 0, 1, 3);
    applyCondition(widget);
}

void SettingsForm::applyCondition(QWidget *widget)
{
    if (m_condition)
        m_conditionalWidgets.push_back({widget, m_condition});
}

void SettingsForm::updateEnabled()
{
    for (const ConditionalWidget &conditional : m_conditionalWidgets)
        conditional.widget->setEnabled(conditional.condition());
}

QLabel *SettingsForm::addRow(const Text &text, QWidget *control)
{
    auto *const label = new QLabel(text.label, this);
    label->setBuddy(control);
    label->setToolTip(text.toolTip);
    describe(control, text.label, text.toolTip);
    m_grid->addWidget(label, m_grid->rowCount(), 0);
    applyCondition(label);
    applyCondition(control);
    return label;
}

void SettingsForm::addSwitch(const Text &text, Setting<bool> setting)
{
    auto *const toggle = new ToggleSwitch(this);
    addRow(text, toggle);
    m_grid->addWidget(toggle, m_grid->rowCount() - 1, 1, 1, 2, Qt::AlignRight | Qt::AlignVCenter);
    connect(toggle, &QAbstractButton::toggled, this, [=](bool on) { change(setting, on); });
    m_loaders.emplace_back([=] { toggle->setChecked(setting.value()); });
}

void SettingsForm::addSlider(const Text &text, Setting<int> setting, const Range &range)
{
    auto *const slider = new MiniSlider(this);
    auto *const value = new QLabel(this);
    slider->setRange(range.minimum, range.maximum);
    slider->setSingleStep(range.step);
    addRow(text, slider);
    value->setObjectName(QStringLiteral("Value"));
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    applyCondition(value);
    const int row = m_grid->rowCount() - 1;
    m_grid->addWidget(slider, row, 1);
    m_grid->addWidget(value, row, 2);
    connect(slider, &QSlider::valueChanged, this, [=](int number) {
        value->setText(range.text(number));
        change(setting, number);
    });
    m_loaders.emplace_back([=] {
        slider->setValue(setting.value());
        const QFontMetrics letters(value->font());
        value->setMinimumWidth(std::max(letters.horizontalAdvance(range.text(range.minimum)),
                                        letters.horizontalAdvance(range.text(range.maximum))));
        value->setText(range.text(slider->value()));
    });
}

void SettingsForm::addColor(const Text &text, Setting<QColor> setting)
{
    auto *const button = new ColorSelectButton(this);
    addRow(text, button);
    m_grid->addWidget(button, m_grid->rowCount() - 1, 1, 1, 2, Qt::AlignRight | Qt::AlignVCenter);
    connect(button, &ColorSelectButton::sigColorChanged, this, [=](const QColor &color) { change(setting, color); });
    m_loaders.emplace_back([=] { button->setColor(setting.value()); });
}

void SettingsForm::addFont(const Text &text, QFont KelMovieConfig::*field)
{
    auto *const box = new ChoiceBox(this);
    box->addItems(QFontDatabase().families());
    addRow(text, box);
    m_grid->addWidget(box, m_grid->rowCount() - 1, 1, 1, 2);
    connect(box, &QComboBox::currentTextChanged, this, [=](const QString &family) {
        if (m_isLoading)
            return;
        (gKelMovieConfig.*field).setFamily(family);
        emit sigChanged();
    });
    m_loaders.emplace_back([=] {
        // The default is created before QApplication and has no family then.
        const QFont &font = gKelMovieConfig.*field;
        box->setCurrentText(QFontInfo(font.family().isEmpty() ? QApplication::font() : font).family());
    });
}

void SettingsForm::addChips(const Text &text, Setting<int> setting, const QVector<Choice> &choices)
{
    auto *const box = new QWidget(this);
    auto *const group = new QButtonGroup(box);
    for (QAbstractButton *const chip : fillChips(box, choices, choices.size())) {
        chip->setAutoExclusive(true); // exposes it as a radio button to assistive technology
        group->addButton(chip, choices[group->buttons().size()].value);
    }
    addRow(text, box)->setBuddy(group->buttons().constFirst());
    m_grid->addWidget(box, m_grid->rowCount() - 1, 1, 1, 2, Qt::AlignRight | Qt::AlignVCenter);
    connect(group, &QButtonGroup::idToggled, this, [=](int value, bool on) {
        if (on)
            change(setting, value);
    });
    m_loaders.emplace_back([=] {
        group->setExclusive(false); // lets an unknown value leave all choices unchecked
        for (QAbstractButton *const chip : group->buttons())
            chip->setChecked(group->id(chip) == setting.value());
        group->setExclusive(true);
        // As in any radio group, Tab reaches the checked choice and arrow keys the others.
        QAbstractButton *const entry = group->checkedButton() ? group->checkedButton() : group->buttons().constFirst();
        for (QAbstractButton *const chip : group->buttons())
            chip->setFocusPolicy(chip == entry ? Qt::StrongFocus : Qt::ClickFocus);
    });
}

void SettingsForm::addBits(const Text &text, Setting<int> setting, const QVector<Choice> &choices, int columns)
{
    auto *const box = new QWidget(this);
    const QVector<QAbstractButton *> chips = fillChips(box, choices, columns);
    addRow(text, box)->setBuddy(chips.constFirst());
    m_grid->addWidget(box, m_grid->rowCount() - 1, 1, 1, 2, Qt::AlignRight | Qt::AlignVCenter);
    for (int i = 0; i < chips.size(); ++i) {
        const int bit = choices[i].value;
        QAbstractButton *const chip = chips[i];
        connect(chip, &QAbstractButton::toggled, this,
                [=](bool on) { change(setting, on ? setting.value() | bit : setting.value() & ~bit); });
        m_loaders.emplace_back([=] { chip->setChecked(setting.value() & bit); });
    }
}

void SettingsForm::addList(const Text &text, Setting<int> setting, const QVector<Choice> &choices)
{
    auto *const box = new ChoiceBox(this);
    for (const Choice &choice : choices)
        box->addItem(choice.name, choice.value);
    addRow(text, box);
    m_grid->addWidget(box, m_grid->rowCount() - 1, 1, 1, 2, Qt::AlignRight | Qt::AlignVCenter);
    connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [=](int index) {
        if (index >= 0)
            change(setting, box->itemData(index).toInt());
    });
    m_loaders.emplace_back([=] { box->setCurrentIndex(box->findData(setting.value())); });
}

} // namespace kel
