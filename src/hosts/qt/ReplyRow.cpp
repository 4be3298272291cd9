#include "hosts/qt/ReplyRow.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

namespace velloway {

ReplyRow::ReplyRow(const ReplyField& field, std::function<void(const QString& text)> send, QWidget* parent)
    : QWidget(parent), input_(new QLineEdit(this)) {
    auto* button = new QPushButton(field.buttonTitle, this);
    button->setAccessibleName(field.buttonTitle);
    button->setFocusPolicy(Qt::TabFocus);
    button->setAutoDefault(false);
    input_->setPlaceholderText(field.placeholder);
    input_->setAccessibleName(field.placeholder);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 6, 0, 0);
    row->setSpacing(8);
    row->addWidget(input_, 1);
    row->addWidget(button);

    const auto sendText = [this, send = std::move(send)] { send(input_->text()); };
    connect(input_, &QLineEdit::returnPressed, this, sendText);
    connect(button, &QPushButton::clicked, this, sendText);
    setFocusProxy(input_);
}

} // namespace velloway
