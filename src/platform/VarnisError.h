#pragma once

#include <QString>

#include <exception>

// Root of every error the system raises on purpose. `errorDescription` is the German text that a
// presentation model shows; it never holds key material or raw HTTP.
class VarnisError : public std::exception {
public:
    virtual QString errorDescription() const = 0;
    const char* what() const noexcept override;

private:
    mutable QByteArray m_what;
};

// The German description of any exception that reaches the edge of a presentation model.
QString describeError(const std::exception& error);

// `text` with every control character but line feed and tab written out as \x1B or \u009B,
// so that a text from outside can neither rewrite a terminal nor hide in a label.
QString printableText(const QString& text);
