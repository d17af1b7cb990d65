#pragma once

class NVHAppView;
class Screen;
class TestTables;

// Reshape the full recorder's screen, once, for the mode with the list of static tests and for the reduced recorder.
// Members of widgets that the mode does not have become null.
void customizeForVDT(NVHAppView& view, Screen& screen);
void customizeForService(NVHAppView& view, Screen& screen, const TestTables& tables);
