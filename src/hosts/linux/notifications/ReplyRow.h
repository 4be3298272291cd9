#pragma once

#include <QString>
#include <QWidget>

#include <functional>

class QLineEdit;

namespace velloway {

struct ReplyField {
    QString placeholder;
    QString buttonTitle;
};

/// A text field and its button; Return in the field is the button. Also sends an empty text.
class ReplyRow : public QWidget {
public:
    ReplyRow(const ReplyField& field, std::function<void(const QString& text)> send, QWidget* parent = nullptr);

    QLineEdit* input() const { return input_; }

private:
    QLineEdit* input_;
};

} // namespace velloway
