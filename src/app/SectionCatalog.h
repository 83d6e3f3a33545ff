#pragma once

class SectionRegistry;

// The sections the window can show, each with its screen and its presentation model. A new
// subsystem's screen is one more entry here.
SectionRegistry makeSectionRegistry();
