// A tab control: a row (or rows) of
// equal tabs at the top, and pages that cover the whole control, so that a
// child placed at a given spot sits there relative to the control itself.
// Only the selected page is shown.
#pragma once

#include <QColor>
#include <QStringList>
#include <QWidget>

#include <vector>

class QPainter;

namespace kelpa::qt {

class TabControl : public QWidget {
    Q_OBJECT
public:
    TabControl(const QString& name, const QColor& background, int tabsPerRow,
               QWidget* parent = nullptr);

    // A new page; children go at their place relative to the control.
    QWidget* addPage(const QString& caption);
    QWidget* page(int i) const { return pages_.at(static_cast<std::size_t>(i)); }
    int count() const { return static_cast<int>(pages_.size()); }

    int currentIndex() const { return current_; }
    void setCurrentIndex(int i);
    QString tabCaption(int i) const { return captions_.value(i); }
    void setTabCaption(int i, const QString& caption);

    // Where tab i is drawn (for clicks and for tests).
    QRect tabRect(int i) const;
    int tabRowsHeight() const;

signals:
    void currentChanged(int index);

protected:
    void resizeEvent(QResizeEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    // With the focus (a control given Tab focus): the arrow keys step
    // through the tabs, Home and End go to the first and the last.
    void keyPressEvent(QKeyEvent* e) override;
    void focusInEvent(QFocusEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;

private:
    friend class TabRow;
    int rows() const;
    void paintTabs(QPainter& p);
    void clickAt(const QPoint& p);

    QColor background_;
    int tabsPerRow_;
    QWidget* tabRow_;
    QStringList captions_;
    std::vector<QWidget*> pages_;
    int current_ = -1;
};

}  // namespace kelpa::qt
