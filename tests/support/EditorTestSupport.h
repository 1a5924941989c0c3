// Helpers of the window tests: points whose type comes from the shipped dictionary, a stand-in
// structure with fields of any class, and the modal window that a call opens.
#pragma once

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <functional>

#include "base/KeyedCollection.h"
#include "datatypes/CDBSNVTType.h"
#include "tests/support/Blocks.h"
#include "tests/support/FakeAttributes.h"

namespace zerbin::testing {

// A type record of the shipped dictionary, changeable field by field afterwards.
inline std::shared_ptr<CDBSNVTType> ShippedType(const std::string& id) {
    ScopedDictionary dictionary(ShippedDictionary());
    auto type = std::make_shared<CDBSNVTType>();
    type->ResolveByID(id);
    return type;
}

// An attribute of a given type, limits and fields; values are stored as they are written.
struct TestPoint : FakeAttribute {
    TestPoint(std::string pointName, std::shared_ptr<ISNVType> pointType, std::string start = {})
        : FakeAttribute(std::move(pointName)), type(std::move(pointType)) {
        value = std::move(start);
    }
    std::shared_ptr<ISNVType> IAttribute_SNVTType() override { return type; }
    std::string IAttribute_Min() override { return min; }
    std::string IAttribute_Max() override { return max; }
    std::shared_ptr<IFields> IAttribute_Fields() override { return fields; }

    std::shared_ptr<ISNVType> type;
    std::string min;
    std::string max;
    std::shared_ptr<IFields> fields;
};

// A field that stores what is written and shows "<value>!" as its display text.
struct TestField : IField {
    TestField(std::string fieldName, std::shared_ptr<ISNVType> fieldType, std::string start)
        : name(std::move(fieldName)), type(std::move(fieldType)), value(std::move(start)) {}
    bool IField_IsConnected() override { return false; }
    std::shared_ptr<IFields> IField_Fields() override { return nullptr; }
    int32_t IField_Offset() override { return 0; }
    std::string IField_Name() override { return name; }
    std::string IField_GlobalKey() override { return {}; }
    std::string IField_DefaultValue() override { return {}; }
    std::string IField_DispMin() override { return {}; }
    std::string IField_DispMax() override { return {}; }
    std::string IField_DispDefault() override { return {}; }
    std::string IField_DispValue() override { return value + "!"; }
    std::string IField_Value() override { return value; }
    void IField_Value(const std::string& v) override { value = v; }
    void IField_SetValue() override {}
    std::shared_ptr<ISNVType> IField_SNVTType() override { return type; }
    int32_t IField_Index() override { return 0; }
    int32_t IField_NodeType() override { return 0; }
    void IField_Import() override {}
    void IField_Export() override {}
    void IField_Save() override {}
    void IField_Load() override {}
    std::shared_ptr<IObject> IField_Parent() override { return nullptr; }
    std::string IField_ExtendedKey() override { return {}; }
    std::string IField_RefValue() override { return {}; }
    void IField_RefValue(const std::string&) override {}
    void IField_IsDisplayUsable(bool) override {}

    std::string name;
    std::shared_ptr<ISNVType> type;
    std::string value;
};

struct TestFields : IFields {
    int32_t IFields_Count() override { return items.Count(); }
    std::shared_ptr<IField> IFields_Item(const std::string& Key) override {
        return items.Item(Key);
    }
    std::vector<std::shared_ptr<IField>> IFields_NewEnum() override {
        return {items.Items().begin(), items.Items().end()};
    }
    int32_t IFields_Length() override { return 0; }
    KeyedCollection<TestField> items;
};

// Types keys into a box: "\b" Backspace, "\r" Enter, "\x1b" Esc. QTest knows key codes for
// ASCII only; other characters reach the box as the text of an unknown key.
inline void TypeKeys(QWidget& box, const QString& keys) {
    for (const QChar key : keys) {
        const char16_t code = key.unicode();
        if (code == 8 || code == 13 || code == 27) {
            QTest::keyClick(&box, code == 8    ? Qt::Key_Backspace
                                  : code == 13 ? Qt::Key_Return
                                               : Qt::Key_Escape);
        } else if (code < 0x80) {
            QTest::keyClicks(&box, QString(key));
        } else {
            QTest::sendKeyEvent(QTest::Click, &box, Qt::Key_unknown, QString(key), {});
        }
    }
}

// Runs open(), which opens a modal window, and act on that window once it shows; a second
// timer closes whatever is still open so that a failing test cannot hang.
inline void WithModal(const std::function<void()>& open, const std::function<void(QWidget&)>& act) {
    bool acted = false;
    QTimer::singleShot(0, [&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            acted = true;
            act(*modal);
        }
    });
    QTimer safety;
    safety.setInterval(2000);
    QObject::connect(&safety, &QTimer::timeout, [] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            modal->close();
        }
    });
    safety.start();
    open();
    EXPECT_TRUE(acted) << "no modal window opened";
}

}  // namespace zerbin::testing
