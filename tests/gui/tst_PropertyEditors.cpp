// The host's property editor of a node, driven through its widgets: every edit is one undo step
// named after the attribute, undo and redo restore the network exactly, typed values are
// clamped or refused, and the editors follow changes made elsewhere.

#include <OssTestHost.h>

#include <OssAttributeEditors.h>
#include <OssColor.h>
#include <OssCustomAttribute.h>
#include <OssImage.h>
#include <OssImageManager.h>
#include <OssNodePropertyEditor.h>
#include <OssNumberAttributeEditor.h>
#include <OssShaderNetwork.h>
#include <OssSnBaseNode.h>
#include <OssStatusManager.h>
#include <OssUndoManager.h>

#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTest>
#include <QToolButton>

#include <memory>

class tst_PropertyEditors : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    // Numbers: typed entry, clamping, refusal, slider.
    void typedNumber_data();
    void typedNumber();
    void refusedEntry_data();
    void refusedEntry();
    void sliderDragIsOneStep();
    void sliderClickIsOneStep();

    // The other kinds.
    void boolEditor();
    void enumEditor();
    void colorDialog();
    void colorTyped();
    void vectorTyped();
    void stringTyped();
    void filePathDialog();
    void imageReference();

    // Following the node.
    void followsUndoAndOtherEditors();
    void renamedNodeRenamesHeading();
    void sectionsInPatternOrder();

private:
    // Makes a node of Type named Name and an editor for it, shown.
    OssSnBaseNode *makeNode(const QString &type, const QString &name);
    OssNodePropertyEditor *openEditor(OssSnBaseNode *node,
                                      const OssNodePropertyEditorOptions &options = {});
    template <typename Editor> Editor *editorFor(const QString &attribute)
    {
        auto *editor = qobject_cast<Editor *>(m_editor->editor(attribute));
        if (!editor)
            qWarning("no editor of the expected kind for %s", qPrintable(attribute));
        return editor;
    }
    // One undo step titled Title was added since the editor opened, and undo then redo give
    // back the dumps before and after it.
    void verifyOneStep(const QString &title);
    static void typeInto(QLineEdit *field, const QString &text);

    OssTestHost m_host;
    OssShaderNetwork *m_network = nullptr;
    std::unique_ptr<OssNodePropertyEditor> m_editor;
    int m_stepsBefore = 0;
    QString m_dumpBefore;
};

void tst_PropertyEditors::initTestCase()
{
    QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
}

void tst_PropertyEditors::init()
{
    m_network = m_host.newProject();
    QVERIFY(m_network);
}

void tst_PropertyEditors::cleanup()
{
    m_editor.reset();
    QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
}

OssSnBaseNode *tst_PropertyEditors::makeNode(const QString &type, const QString &name)
{
    if (!m_host.createNodes(m_network, {{type, name}}))
        return nullptr;
    OssUndoManager::instance()->clear();
    return m_network->node(name);
}

OssNodePropertyEditor *tst_PropertyEditors::openEditor(OssSnBaseNode *node,
                                                       const OssNodePropertyEditorOptions &options)
{
    m_editor.reset(OssNodePropertyEditor::create(node, nullptr, options));
    m_editor->resize(420, m_editor->sizeHint().height());
    m_editor->show();
    m_stepsBefore = OssUndoManager::instance()->count();
    m_dumpBefore = m_network->dump();
    return m_editor.get();
}

void tst_PropertyEditors::verifyOneStep(const QString &title)
{
    OssUndoManager *history = OssUndoManager::instance();
    QCOMPARE(history->count(), m_stepsBefore + 1);
    QCOMPARE(history->undoText(), title);
    const QString after = m_network->dump();
    QVERIFY(after != m_dumpBefore);
    history->undo();
    QCOMPARE(m_network->dump(), m_dumpBefore);
    history->redo();
    QCOMPARE(m_network->dump(), after);
}

void tst_PropertyEditors::typeInto(QLineEdit *field, const QString &text)
{
    field->setFocus();
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Backspace);
    QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Return);
}

void tst_PropertyEditors::typedNumber_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QVariant>("expected");
    QTest::addColumn<QString>("message");

    QTest::newRow("float in range") << "Math/Mix"
                                    << "Amount"
                                    << "0.25" << QVariant(0.25) << "";
    QTest::newRow("float above maximum")
        << "Math/Mix"
        << "Amount"
        << "1.7" << QVariant(1.0) << "Amount: 1.7 is above the maximum; set to 1";
    QTest::newRow("float below minimum")
        << "Math/Mix"
        << "Amount"
        << "-3" << QVariant(0.0) << "Amount: -3 is below the minimum; set to 0";
    QTest::newRow("float without range") << "Procedural/Noise/Perlin"
                                         << "Frequency"
                                         << "250.5" << QVariant(250.5) << "";
    QTest::newRow("int in range") << "Procedural/Pattern/Bricks"
                                  << "Rows"
                                  << "12" << QVariant(12) << "";
    QTest::newRow("int above maximum")
        << "Procedural/Pattern/Bricks"
        << "Rows"
        << "1000" << QVariant(256) << "Rows: 1000 is above the maximum; set to 256";
    QTest::newRow("int below minimum")
        << "Procedural/Pattern/Bricks"
        << "Rows"
        << "0" << QVariant(1) << "Rows: 0 is below the minimum; set to 1";
}

void tst_PropertyEditors::typedNumber()
{
    QFETCH(QString, type);
    QFETCH(QString, attribute);
    QFETCH(QString, typed);
    QFETCH(QVariant, expected);
    QFETCH(QString, message);

    OssSnBaseNode *node = makeNode(type, QStringLiteral("Node1"));
    QVERIFY(node);
    openEditor(node);
    auto *editor = editorFor<OssNumberAttributeEditor>(attribute);
    QVERIFY(editor);
    OssStatusManager::instance()->showMessage(QString());
    QSignalSpy messages(OssStatusManager::instance(), &OssStatusManager::messageShown);

    typeInto(editor->field(), typed);

    QCOMPARE(node->nodeAttributeValue(attribute), expected);
    QCOMPARE(editor->field()->text(), expected.toString());
    QVERIFY(!OssAttributeEditor::isRefused(editor->field()));
    QCOMPARE(OssStatusManager::instance()->lastMessage(), message);
    QCOMPARE(messages.count(), message.isEmpty() ? 0 : 1);
    verifyOneStep(QStringLiteral("Set %1 of Node1").arg(attribute));
}

void tst_PropertyEditors::refusedEntry_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("reason");

    QTest::newRow("float") << "Math/Mix"
                           << "Amount"
                           << "value"
                           << "half"
                           << "\"half\" is not a number";
    QTest::newRow("float empty") << "Math/Mix"
                                 << "Amount"
                                 << "value"
                                 << ""
                                 << "\"\" is not a number";
    QTest::newRow("int with a fraction") << "Procedural/Pattern/Bricks"
                                         << "Rows"
                                         << "value"
                                         << "2.5"
                                         << "\"2.5\" is not a whole number";
    QTest::newRow("colour") << "Procedural/Pattern/Bricks"
                            << "BrickColor"
                            << "value"
                            << "reddish"
                            << "\"reddish\" is not a colour";
    QTest::newRow("vector component") << "Adjust/Grayscale"
                                      << "Weights"
                                      << "y"
                                      << "1,5e"
                                      << "\"1,5e\" is not a number";
}

void tst_PropertyEditors::refusedEntry()
{
    QFETCH(QString, type);
    QFETCH(QString, attribute);
    QFETCH(QString, field);
    QFETCH(QString, typed);
    QFETCH(QString, reason);

    OssSnBaseNode *node = makeNode(type, QStringLiteral("Node1"));
    QVERIFY(node);
    openEditor(node);
    const QVariant before = node->nodeAttributeValue(attribute);
    QSignalSpy changes(node, &OssSnBaseNode::nodeAttributeChanged);
    auto *edit = m_editor->editor(attribute)->findChild<QLineEdit *>(field);
    QVERIFY(edit);

    typeInto(edit, typed);

    QVERIFY(OssAttributeEditor::isRefused(edit));
    QVERIFY2(edit->toolTip().startsWith(reason), qPrintable(edit->toolTip()));
    QVERIFY(edit->styleSheet().contains(QLatin1String("background-color")));
    QCOMPARE(edit->text(), typed);
    QCOMPARE(changes.count(), 0);
    QCOMPARE(node->nodeAttributeValue(attribute), before);
    QCOMPARE(OssUndoManager::instance()->count(), m_stepsBefore);
    QCOMPARE(m_network->dump(), m_dumpBefore);

    // Showing the node's value again clears the mark.
    m_editor->editor(attribute)->setValue(before);
    QVERIFY(!OssAttributeEditor::isRefused(edit));
    QVERIFY(edit->toolTip().isEmpty());
}

void tst_PropertyEditors::sliderDragIsOneStep()
{
    OssSnBaseNode *node = makeNode(QStringLiteral("Math/Mix"), QStringLiteral("Mix"));
    QVERIFY(node);
    openEditor(node);
    auto *editor = editorFor<OssNumberAttributeEditor>(QStringLiteral("Amount"));
    QVERIFY(editor);
    QSlider *slider = editor->slider();
    QVERIFY(QTest::qWaitForWindowExposed(m_editor.get()));

    QStyleOptionSlider option;
    option.initFrom(slider);
    option.orientation = slider->orientation();
    option.minimum = slider->minimum();
    option.maximum = slider->maximum();
    option.sliderPosition = slider->sliderPosition();
    option.sliderValue = slider->value();
    const QRect handle = slider->style()->subControlRect(QStyle::CC_Slider, &option,
                                                         QStyle::SC_SliderHandle, slider);
    QPoint at = handle.center();
    QSignalSpy changes(node, &OssSnBaseNode::nodeAttributeChanged);

    QTest::mousePress(slider, Qt::LeftButton, Qt::NoModifier, at);
    QVERIFY(slider->isSliderDown());
    for (int step = 0; step < 25; ++step) {
        at.rx() += 3;
        QMouseEvent move(QEvent::MouseMove, at, slider->mapToGlobal(at), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(slider, &move);
    }
    // Every step was previewed on the node, none recorded.
    QVERIFY(changes.count() > 5);
    QCOMPARE(OssUndoManager::instance()->count(), m_stepsBefore);
    const double dragged = node->nodeAttributeValue(QStringLiteral("Amount")).toDouble();
    QVERIFY(dragged > 0.5);
    QCOMPARE(editor->field()->text(), QString::number(dragged));
    QTest::mouseRelease(slider, Qt::LeftButton, Qt::NoModifier, at);

    QCOMPARE(node->nodeAttributeValue(QStringLiteral("Amount")).toDouble(), dragged);
    verifyOneStep(QStringLiteral("Set Amount of Mix"));
    OssUndoManager::instance()->undo();
    QCOMPARE(node->nodeAttributeValue(QStringLiteral("Amount")).toDouble(), 0.5);
    QCOMPARE(editor->field()->text(), QStringLiteral("0.5"));
}

void tst_PropertyEditors::sliderClickIsOneStep()
{
    OssSnBaseNode *node =
        makeNode(QStringLiteral("Procedural/Pattern/Bricks"), QStringLiteral("B"));
    QVERIFY(node);
    openEditor(node);
    auto *editor = editorFor<OssNumberAttributeEditor>(QStringLiteral("Rows"));
    QVERIFY(editor);
    editor->slider()->setFocus();
    QTest::keyClick(editor->slider(), Qt::Key_Right);
    QCOMPARE(node->nodeAttributeValue(QStringLiteral("Rows")), QVariant(9));
    verifyOneStep(QStringLiteral("Set Rows of B"));
}

void tst_PropertyEditors::boolEditor()
{
    OssSnBaseNode *node = makeNode(QStringLiteral("Math/Add"), QStringLiteral("Add"));
    QVERIFY(node);
    openEditor(node);
    auto *editor = editorFor<OssBoolAttributeEditor>(QStringLiteral("Clamp"));
    QVERIFY(editor);
    QVERIFY(!editor->checkBox()->isChecked());
    QTest::mouseClick(editor->checkBox(), Qt::LeftButton);
    QCOMPARE(node->nodeAttributeValue(QStringLiteral("Clamp")), QVariant(true));
    verifyOneStep(QStringLiteral("Set Clamp of Add"));
}

void tst_PropertyEditors::enumEditor()
{
    OssSnBaseNode *node = makeNode(QStringLiteral("Adjust/Curves"), QStringLiteral("Curves"));
    QVERIFY(node);
    openEditor(node);
    auto *editor = editorFor<OssEnumAttributeEditor>(QStringLiteral("Channels"));
    QVERIFY(editor);
    QCOMPARE(editor->comboBox()->count(), 5);
    QCOMPARE(editor->comboBox()->currentText(), QStringLiteral("RGB"));
    editor->comboBox()->setFocus();
    QTest::keyClick(editor->comboBox(), Qt::Key_Down);
    QCOMPARE(node->nodeAttributeValue(QStringLiteral("Channels")),
             QVariant(QStringLiteral("1:RGB|Red|Green|Blue|Alpha")));
    verifyOneStep(QStringLiteral("Set Channels of Curves"));
    OssUndoManager::instance()->undo();
    QCOMPARE(editor->comboBox()->currentText(), QStringLiteral("RGB"));
}

void tst_PropertyEditors::colorDialog()
{
    OssSnBaseNode *node =
        makeNode(QStringLiteral("Procedural/Pattern/Bricks"), QStringLiteral("Bricks"));
    QVERIFY(node);
    openEditor(node);
    auto *editor = editorFor<OssColorAttributeEditor>(QStringLiteral("BrickColor"));
    QVERIFY(editor);
    QTest::mouseClick(editor->swatch(), Qt::LeftButton);
    QTRY_VERIFY(editor->dialog() && editor->dialog()->isVisible());
    QCOMPARE(editor->dialog()->currentColor().rgba(),
             OssColor(0.55, 0.22, 0.14, 1).toQColor().rgba());
    editor->dialog()->setCurrentColor(QColor(0, 255, 0));
    QTest::keyClick(editor->dialog(), Qt::Key_Return);
    QTRY_VERIFY(!editor->dialog());

    QCOMPARE(
        node->nodeAttributeValue(QStringLiteral("BrickColor")).value<OssColor>().toQColor().rgba(),
        QColor(0, 255, 0).rgba());
    QCOMPARE(editor->field()->text(), QStringLiteral("0 1 0 1"));
    verifyOneStep(QStringLiteral("Set BrickColor of Bricks"));
}

void tst_PropertyEditors::colorTyped()
{
    OssSnBaseNode *node =
        makeNode(QStringLiteral("Procedural/Pattern/Bricks"), QStringLiteral("Bricks"));
    QVERIFY(node);
    openEditor(node);
    auto *editor = editorFor<OssColorAttributeEditor>(QStringLiteral("MortarColor"));
    QVERIFY(editor);
    typeInto(editor->field(), QStringLiteral("0.25 0.5 1"));
    QCOMPARE(node->nodeAttributeValue(QStringLiteral("MortarColor")).value<OssColor>(),
             OssColor(0.25, 0.5, 1, 1));
    QCOMPARE(editor->field()->text(), QStringLiteral("0.25 0.5 1 1"));
    verifyOneStep(QStringLiteral("Set MortarColor of Bricks"));
}

void tst_PropertyEditors::vectorTyped()
{
    OssSnBaseNode *node = makeNode(QStringLiteral("Adjust/Grayscale"), QStringLiteral("Gray"));
    QVERIFY(node);
    openEditor(node);
    auto *editor = editorFor<OssVectorAttributeEditor>(QStringLiteral("Weights"));
    QVERIFY(editor);
    QCOMPARE(editor->field(0)->text(), QStringLiteral("0.2126"));
    typeInto(editor->field(2), QStringLiteral("0.5"));
    QCOMPARE(node->nodeAttributeValue(QStringLiteral("Weights")),
             QVariant(QStringLiteral("0.2126 0.7152 0.5")));
    verifyOneStep(QStringLiteral("Set Weights of Gray"));
}

void tst_PropertyEditors::stringTyped()
{
    OssSnBaseNode *node = makeNode(QStringLiteral("Adjust/Curves"), QStringLiteral("Curves"));
    QVERIFY(node);
    openEditor(node);
    auto *editor = editorFor<OssStringAttributeEditor>(QStringLiteral("Curve"));
    QVERIFY(editor);
    QVERIFY(!editor->browseButton());
    typeInto(editor->field(), QStringLiteral("0,0 0.5,0.8 1,1"));
    QCOMPARE(node->nodeAttributeValue(QStringLiteral("Curve")),
             QVariant(QStringLiteral("0,0 0.5,0.8 1,1")));
    verifyOneStep(QStringLiteral("Set Curve of Curves"));
    // Finishing again without a change adds nothing.
    const int steps = OssUndoManager::instance()->count();
    editor->field()->setFocus();
    QTest::keyClick(editor->field(), Qt::Key_Return);
    QCOMPARE(OssUndoManager::instance()->count(), steps);
}

void tst_PropertyEditors::filePathDialog()
{
    OssSnBaseNode *node = makeNode(QStringLiteral("Adjust/Curves"), QStringLiteral("Curves"));
    QVERIFY(node);
    openEditor(node);
    auto *editor = editorFor<OssStringAttributeEditor>(QStringLiteral("PresetFile"));
    QVERIFY(editor);
    QVERIFY(editor->browseButton());
    const QString path = m_host.scratchPath(QStringLiteral("preset.curve"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("0,0 1,1\n");
    file.close();

    QTest::mouseClick(editor->browseButton(), Qt::LeftButton);
    QTRY_VERIFY(editor->dialog() && editor->dialog()->isVisible());
    editor->dialog()->setDirectory(m_host.scratchDirectory());
    editor->dialog()->selectFile(path);
    QTest::keyClick(editor->dialog(), Qt::Key_Return);
    QTRY_VERIFY(!editor->dialog());

    QCOMPARE(node->nodeAttributeValue(QStringLiteral("PresetFile")).toString(), path);
    QCOMPARE(editor->field()->text(), path);
    verifyOneStep(QStringLiteral("Set PresetFile of Curves"));
}

void tst_PropertyEditors::imageReference()
{
    const QString path = m_host.scratchPath(QStringLiteral("bricks.png"));
    QImage picture(8, 8, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(path));
    OssSnBaseNode *node = makeNode(QStringLiteral("Procedural/Pattern/Tiled"), QStringLiteral("T"));
    QVERIFY(node);
    openEditor(node);
    auto *editor = editorFor<OssImageAttributeEditor>(QStringLiteral("TileImage"));
    QVERIFY(editor);
    QCOMPARE(editor->comboBox()->currentText(), QStringLiteral("(none)"));

    // Loading a file through the editor picks the new image.
    QTest::mouseClick(editor->loadButton(), Qt::LeftButton);
    QTRY_VERIFY(editor->dialog() && editor->dialog()->isVisible());
    editor->dialog()->setDirectory(m_host.scratchDirectory());
    editor->dialog()->selectFile(path);
    QTest::keyClick(editor->dialog(), Qt::Key_Return);
    QTRY_VERIFY(!editor->dialog());
    const QList<OssImage *> images = OssImageManager::instance()->images();
    QVERIFY(!images.isEmpty());
    const QString id = images.last()->uniqueId().toString();
    QCOMPARE(node->nodeAttributeValue(QStringLiteral("TileImage")).toStringList(), QStringList{id});
    QCOMPARE(editor->comboBox()->currentText(), QStringLiteral("bricks.png"));
    verifyOneStep(QStringLiteral("Set TileImage of T"));

    // Choosing "(none)" in the list clears it again, one more step.
    editor->comboBox()->setFocus();
    QTest::keyClick(editor->comboBox(), Qt::Key_Home);
    QCOMPARE(node->nodeAttributeValue(QStringLiteral("TileImage")).toStringList(), QStringList());
    QCOMPARE(OssUndoManager::instance()->undoText(), QStringLiteral("Set TileImage of T"));
    OssImageManager::instance()->clear();
}

void tst_PropertyEditors::followsUndoAndOtherEditors()
{
    OssSnBaseNode *node = makeNode(QStringLiteral("Math/Mix"), QStringLiteral("Mix"));
    QVERIFY(node);
    openEditor(node);
    std::unique_ptr<OssNodePropertyEditor> second(OssNodePropertyEditor::create(node, nullptr));
    second->show();
    auto *first = editorFor<OssNumberAttributeEditor>(QStringLiteral("Amount"));
    auto *other =
        qobject_cast<OssNumberAttributeEditor *>(second->editor(QStringLiteral("Amount")));
    QVERIFY(first && other);

    typeInto(first->field(), QStringLiteral("0.8"));
    QCOMPARE(other->field()->text(), QStringLiteral("0.8"));
    QCOMPARE(other->slider()->value(), 800);

    OssUndoManager::instance()->undo();
    QCOMPARE(first->field()->text(), QStringLiteral("0.5"));
    QCOMPARE(other->field()->text(), QStringLiteral("0.5"));

    // A change made by a script (the node's own setter) shows too.
    node->setNodeAttribute(QStringLiteral("Amount"), 0.125);
    QCOMPARE(first->field()->text(), QStringLiteral("0.125"));
    QCOMPARE(other->slider()->value(), 125);
}

void tst_PropertyEditors::renamedNodeRenamesHeading()
{
    OssSnBaseNode *node = makeNode(QStringLiteral("Math/Mix"), QStringLiteral("Mix"));
    QVERIFY(node);
    openEditor(node);
    QCOMPARE(m_editor->heading()->text(), QStringLiteral("Mix"));
    node->setName(QStringLiteral("Blend"));
    QCOMPARE(m_editor->heading()->text(), QStringLiteral("Blend"));
}

void tst_PropertyEditors::sectionsInPatternOrder()
{
    OssSnBaseNode *node = makeNode(QStringLiteral("Shaders/Default"), QStringLiteral("Shader"));
    QVERIFY(node);
    node->setNodeAttribute(QStringLiteral("SpecularWeight"), 0.5, false);
    node->setNodeAttribute(QStringLiteral("DiffuseWeight"), 1.0, false);
    node->setNodeAttribute(QStringLiteral("DisplacementScale"), 0.1, false);
    OssNodePropertyEditorOptions options;
    for (const char *pattern : {"Diffuse.*", "Specular.*", "Displacement.*"})
        options.sectionOrder.append(QRegularExpression(QLatin1String(pattern)));
    options.hiddenSections = QStringList{QStringLiteral("Displacement")};
    options.leadingAttributes = QStringList{QStringLiteral("name")};
    options.otherSectionPath = QStringList{QStringLiteral("/Node")};
    options.groupIntoSections = true;
    options.leadingAttributesFirst = true;
    options.otherAttributesInSection = true;
    openEditor(node, options);

    QCOMPARE(m_editor->sectionNames(),
             (QStringList{QStringLiteral("Node"), QStringLiteral("Diffuse"),
                          QStringLiteral("Specular")}));
    QVERIFY(m_editor->section(QStringLiteral("Diffuse"))
                ->isAncestorOf(m_editor->editor(QStringLiteral("DiffuseWeight"))));
    QVERIFY(m_editor->section(QStringLiteral("Node"))
                ->isAncestorOf(m_editor->editor(QStringLiteral("Color"))));
    QVERIFY(!m_editor->editor(QStringLiteral("DisplacementScale")));
    // The leading attribute stands above every section.
    QVERIFY(m_editor->editor(QStringLiteral("name")));
    for (const QString &name : m_editor->sectionNames())
        QVERIFY(!m_editor->section(name)->isAncestorOf(m_editor->editor(QStringLiteral("name"))));
    QCOMPARE(m_editor->editors().first()->attributeName(), QStringLiteral("name"));
}

QTEST_MAIN(tst_PropertyEditors)
#include "tst_PropertyEditors.moc"
