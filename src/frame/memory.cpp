// In progress.
