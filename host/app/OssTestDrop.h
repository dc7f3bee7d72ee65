#pragma once

class QWidget;

// A hook for tests that run the shell in a real window: a window system's test tools can move
// the pointer and press keys but cannot drag files in from another program. When the
// environment variable OSSA_TEST_DROP holds "<x>,<y>;<file>[;<file>...]", the shell, once its
// window is up, drags those files onto the node graph as a file manager would (file URLs in the
// mime data): enter, move and drop events at the point (x, y) of the graph's viewport.
void ossScheduleTestDrop(QWidget *window);
