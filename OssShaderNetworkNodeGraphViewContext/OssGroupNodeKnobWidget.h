#pragma once

#include <QDialog>
#include <QLineEdit>
#include <QPointer>
#include <QTreeWidget>
#include <QWidget>

class OssSnGroupNode;
class QDialogButtonBox;
class QPushButton;

// Item data roles of the knob tree (column 0).
enum OssGroupNodeKnobRole
{
    OssKnobLinkedNodeRole = Qt::UserRole + 1,
    OssKnobLinkedAttributeRole = Qt::UserRole + 2,
    OssKnobAttributeRole = Qt::UserRole + 4,
    OssKnobGroupRole = Qt::UserRole + 5,
    OssKnobPrettyNameRole = Qt::UserRole + 6,
    // True on a knob whose linked attribute is gone (its node left the group's subgraph).
    OssKnobBrokenRole = Qt::UserRole + 7,
};

// A dialog that swallows key presses, so that neither Enter nor Return nor Escape accepts or
// closes it: Return in its search field searches instead of accepting the pick.
class OssEnterIgnorantDialog : public QDialog
{
    Q_OBJECT
public:
    explicit OssEnterIgnorantDialog(QWidget *parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

// The knobs of a group node by attribute group: picks inner attributes to expose, links, renames,
// deletes and reorders them. Every change goes to the group node at once, as one undo step.
class OssGroupNodeKnobWidget : public QWidget
{
    Q_OBJECT
public:
    OssGroupNodeKnobWidget(OssSnGroupNode *groupNode, QWidget *parent = nullptr);

    QDialogButtonBox *buttonBox() const { return m_buttonBox; }
    QTreeWidget *knobTree() const { return m_knobTree; }
    // The pick dialog's tree and search field while it is open, else null.
    QTreeWidget *pickTree() const { return m_pickTree; }
    QLineEdit *searchField() const { return m_searchField; }

protected slots:
    virtual void showGizmoPropertySelection();
    void refreshKnobList(QString CurrentKnobName = QString(), bool CurrentKnobIsNode = false);
    void editKnob();
    void linkKnobs();
    void deleteKnob();
    void moveSelectedKnobUp();
    void moveSelectedKnobDown();
    void findNextPickItem();
    void findPreviousPickItem();
    void printInfoOfKnobItem();
    void itemSelectionChanged();

private:
    bool groupSelected() const;
    QList<QTreeWidgetItem *> selectedKnobItems() const;
    void moveSelectedKnob(int step);
    void findPickItem(int step);
    // Asks for the name of a linked knob until it is acceptable; empty when cancelled.
    QString askNewKnobName();
    void fillPickTree();

    QPointer<OssSnGroupNode> m_groupNode;
    QTreeWidget *m_knobTree = nullptr;
    QDialogButtonBox *m_buttonBox = nullptr;
    QPushButton *m_editButton = nullptr;
    QPushButton *m_linkButton = nullptr;
    QPushButton *m_deleteButton = nullptr;
    QPushButton *m_upButton = nullptr;
    QPushButton *m_downButton = nullptr;
    QPointer<QTreeWidget> m_pickTree;
    QPointer<QLineEdit> m_searchField;
};

// The window of the knob manager: "Group Node Knobs", on top, its OK button closing it.
class OssGroupNodeKnobDialog : public QDialog
{
    Q_OBJECT
public:
    explicit OssGroupNodeKnobDialog(OssSnGroupNode *groupNode, QWidget *parent = nullptr);

    OssGroupNodeKnobWidget *knobWidget() const { return m_widget; }

private:
    OssGroupNodeKnobWidget *m_widget = nullptr;
};
