#pragma once

// What the window knows of a pen display's own screen. Nothing reports it yet, so it keeps
// its first values: not found, screen 0, no rotation, contrast supported.
struct tagZKDisplayContent {
    bool bFind = false;
    int nScreenIndex = 0;
    int nRotate = 0;
    bool bNoContrast = false;
};
