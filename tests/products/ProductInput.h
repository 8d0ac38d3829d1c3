#ifndef VORN_TESTS_PRODUCTINPUT_H
#define VORN_TESTS_PRODUCTINPUT_H

#include "BasicInputHandler.h"

#include <QString>

/// The same keys on every device, as in product.toml: Info, and a volume key with long presses.
class ProductInput : public BasicInputHandler
{
public:
    ProductInput();

    void addDevice(const QString &device, const QString &name) override;
};

#endif
