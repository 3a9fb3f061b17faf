#pragma once

namespace quillmar::demo
{

class Workshop;

/// Packs of pictures: overlays, camera frames, scenes, a Persian pack.
void makePacks(Workshop &workshop);

/// Clips and stingers.
void makeMotion(Workshop &workshop);

/// Products that are right but unusual: single files, missing digests, long words, crowded galleries.
void makeOddities(Workshop &workshop);

/// Products that are about their galleries: every format and direction, five pictures, none.
void makePictures(Workshop &workshop);

} // namespace quillmar::demo
