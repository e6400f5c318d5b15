/* Programs that run with other rights than those of their caller: set-user-ID, set-group-ID, file
 * capabilities. Their caller must not choose where they write, nor who may write there after them.
 * Only calls that are safe in a signal handler. */
#ifndef LLTCOV_SECURE_H
#define LLTCOV_SECURE_H

/* Whether this is such a program. */
int is_secure(void);

/* Opens a directory by its absolute path, over no symbolic link, and makes what is missing. A
 * descriptor by which files in it are named, or -1 with errno set (ELOOP: there is a link). */
int secure_directory(const char* path);

/* Gives a file that was opened the permissions that it has whatever the caller's umask is. */
void secure_mode(int fd);

#endif
