// SPDX-License-Identifier: MIT
// The endpoints of any class, by the file that has them.
#pragma once

#include <memory>

namespace tavelor::web {

class ClassCursors;
class Routes;

void addClassTable(Routes& routes);
void addClassRows(Routes& routes, const std::shared_ptr<ClassCursors>& cursors);
void addClassViews(Routes& routes, const std::shared_ptr<ClassCursors>& cursors);
void addClassRecords(Routes& routes, const std::shared_ptr<ClassCursors>& cursors);
void addClassCalls(Routes& routes, const std::shared_ptr<ClassCursors>& cursors);

}  // namespace tavelor::web
