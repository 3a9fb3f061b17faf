#pragma once

/// How often the keeper of events has sent the graphics thread of OBS away. Any thread.
extern "C" int quillmar_refused_polls();
