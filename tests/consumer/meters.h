#pragma once

// Whether every meter answers from a second translation unit.
bool MetersAnswer();
